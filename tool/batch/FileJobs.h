// SPDX-License-Identifier: Apache-2.0
//
// What there is to do with many files: who gives the files, and who hears what became of each.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

struct S_FileJob {
  std::string strSource;
  std::string strTarget;    // "" when nothing is made of the file
  std::uint64_t qwKey = 0;  // whatever the giver knows the file by
  // A file that has the name of the target was made by an earlier run and may be replaced.
  bool bOwnTarget = false;
  // An earlier run made it as well, but somebody else has changed it since.
  bool bChangedTarget = false;
};

enum class tagFileState {
  FILE_DONE,
  FILE_SKIPPED,  // there was nothing to do
  FILE_FAILED,
};

struct S_FileResult {
  tagFileState eState = tagFileState::FILE_DONE;
  // Of a failure, and of what is damaged or cut: the whole line, "FILE: what: why".
  std::string strReason;
  bool bTargetInWay = false;  // a failure, because the target exists
  std::uint32_t dwRate = 0;
  std::uint64_t qwFrames = 0;   // that were read
  std::uint64_t qwDamaged = 0;  // of these
  bool bCut = false;            // the end is missing
  // Of the decoded sound, where it was asked for.
  std::optional<std::uint64_t> qwSum;

  [[nodiscard]] double Seconds() const noexcept {
    return dwRate == 0 ? 0.0 : static_cast<double>(qwFrames) / dwRate;
  }
};

// Any thread may call any operation.
class I_FileJobs {
 public:
  virtual ~I_FileJobs() = default;

  // Nothing when there are no more.
  virtual std::optional<S_FileJob> Next() = 0;  // 1
  // Hears of each file that Next gave, unless the user has interrupted the work on it. What it
  // throws ends the work on all files.
  virtual void Done(const S_FileJob& job, const S_FileResult& result) = 0;  // 2
  // How many there are in all.
  [[nodiscard]] virtual std::uint64_t Count() const noexcept = 0;  // 3
};

}  // namespace tool
