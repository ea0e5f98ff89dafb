// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <vector>

#include "batch/FileJobs.h"
#include "batch/FileList.h"
#include "batch/Targets.h"

namespace tool {

// The files of a list, one after another.
class C_ListedJobs final : public I_FileJobs {
 public:
  explicit C_ListedJobs(std::vector<S_ListedFile> files, PFN_TargetOf fnTargetOf = {});

  std::optional<S_FileJob> Next() override;
  void Done(const S_FileJob& /*job*/, const S_FileResult& /*result*/) override {}
  [[nodiscard]] std::uint64_t Count() const noexcept override { return m_files.size(); }

 private:
  std::vector<S_ListedFile> m_files;
  PFN_TargetOf m_fnTargetOf;
  std::atomic<std::size_t> m_nNext = 0;
};

}  // namespace tool
