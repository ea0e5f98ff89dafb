// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "batch/FileJobs.h"
#include "manifest/FileStamp.h"
#include "manifest/Manifest.h"

namespace tool {

struct S_ManifestWork {
  bool bElsewhere = false;  // take over what was claimed on other machines
};

// The files of a manifest that are still to be done. A few at a time are claimed for this process,
// and what became of them is recorded soon. Files that processes had claimed which have died are
// taken as well.
class C_ManifestJobs final : public I_FileJobs {
 public:
  C_ManifestJobs(C_Manifest& manifest, S_ManifestWork work);
  // Gives back what is not done, as far as that can be.
  ~C_ManifestJobs() override;
  C_ManifestJobs(const C_ManifestJobs&) = delete;
  C_ManifestJobs& operator=(const C_ManifestJobs&) = delete;

  std::optional<S_FileJob> Next() override;
  void Done(const S_FileJob& job, const S_FileResult& result) override;
  // That were to be done at the beginning.
  [[nodiscard]] std::uint64_t Count() const noexcept override { return m_qwCount; }
  // That were claimed on other machines at the beginning, and are left to these.
  [[nodiscard]] std::uint64_t ClaimedElsewhere() const noexcept { return m_qwElsewhere; }

  // Records everything, and gives back what is not done. To be called when no thread works.
  void End();

 private:
  struct S_Ended {
    S_FileJob job;
    S_FileResult result;
    S_FileStamp source;  // when the work on it began
  };
  using C_Clock = std::chrono::steady_clock;

  void Begin(S_ManifestWork work);
  void ClaimMore();
  void ChooseBatch();
  std::vector<S_FileJob> Claimed();
  void RecordSoon();
  void Record(const S_Ended& ended);
  void RecordMade(const S_Ended& ended);
  void RecordFailed(const S_Ended& ended);
  void RecordAll();
  void GiveBack();

  C_Manifest& m_manifest;
  C_Statement m_select;
  C_Statement m_claim;
  C_Statement m_recordMade;
  C_Statement m_recordFailed;
  std::int64_t m_nWorker = 0;
  std::uint64_t m_qwCount = 0;
  std::uint64_t m_qwElsewhere = 0;

  std::mutex m_lock;  // of what follows
  std::deque<S_FileJob> m_claimed;
  std::map<std::uint64_t, S_FileStamp> m_begun;
  std::vector<S_Ended> m_ended;
  std::int64_t m_nBatch;
  C_Clock::time_point m_lastClaim;
  C_Clock::time_point m_lastRecord;
  bool m_bEnded = false;
};

}  // namespace tool
