// SPDX-License-Identifier: Apache-2.0
#include "manifest/FileStamp.h"

#include <sys/stat.h>

namespace tool {

std::optional<S_FileStamp> StampOf(const std::string& strPath) noexcept {
  struct stat status {};
  if (stat(strPath.c_str(), &status) != 0) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return S_FileStamp{status.st_size, std::int64_t{status.st_mtim.tv_sec} * kNanoseconds +
                                         std::int64_t{status.st_mtim.tv_nsec}};
}

}  // namespace tool
