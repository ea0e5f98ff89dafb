// SPDX-License-Identifier: Apache-2.0
#include "batch/ListedJobs.h"

#include <utility>

namespace tool {

C_ListedJobs::C_ListedJobs(std::vector<S_ListedFile> files, PFN_TargetOf fnTargetOf)
    : m_files(std::move(files)), m_fnTargetOf(std::move(fnTargetOf)) {}

std::optional<S_FileJob> C_ListedJobs::Next() {
  const std::size_t nFile = m_nNext.fetch_add(1, std::memory_order_relaxed);
  if (nFile >= m_files.size()) return std::nullopt;
  const S_ListedFile& file = m_files[nFile];
  return S_FileJob{file.strPath, m_fnTargetOf ? m_fnTargetOf(file) : "", nFile, false};
}

}  // namespace tool
