// SPDX-License-Identifier: Apache-2.0
#include "manifest/FileStamp.h"

#include <sys/stat.h>

#include <cerrno>

namespace tool {

std::optional<S_FileStamp> StampOf(const std::string& strPath) noexcept {
  struct stat status {};
  if (stat(strPath.c_str(), &status) != 0) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return S_FileStamp{status.st_size, std::int64_t{status.st_mtim.tv_sec} * kNanoseconds +
                                         std::int64_t{status.st_mtim.tv_nsec}};
}

bool IsGone(const std::string& strPath) noexcept {
  struct stat status {};
  return stat(strPath.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

bool AreSameFile(const std::string& strPath, const std::string& strOther) noexcept {
  struct stat status {};
  struct stat other {};
  return stat(strPath.c_str(), &status) == 0 && stat(strOther.c_str(), &other) == 0 &&
         status.st_dev == other.st_dev && status.st_ino == other.st_ino;
}

}  // namespace tool
