// SPDX-License-Identifier: Apache-2.0
#include "TargetName.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <system_error>

#include "Replacement.h"

namespace vcm {
namespace {

constexpr int kMostLinks = 40;  // as many as the system follows
constexpr int kLooks = 100;
// What common file systems allow between two slashes.
constexpr std::size_t kLongestName = 255;

bool IsSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// A link in the system's folder of processes, to which the links in /dev lead, stands for a stream
// that somebody has open, not for a name.
bool IsOpenStream(const struct stat& link) {
  struct stat processes {};
  return stat("/proc/self", &processes) == 0 && link.st_dev == processes.st_dev;
}

// Where the links lead that begin at path, which names a file with this state.
E_TargetKind Follow(std::filesystem::path path, const struct stat& status,
                    std::string* pstrOldFile) {
  struct stat named {};
  std::error_code error;
  for (int i = 0; i <= kMostLinks && lstat(path.c_str(), &named) == 0; ++i) {
    if (!S_ISLNK(named.st_mode)) {
      *pstrOldFile = path.string();
      return IsSameFile(named, status) ? E_TargetKind::Regular : E_TargetKind::Unknown;
    }
    if (IsOpenStream(named)) return E_TargetKind::Other;
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) return E_TargetKind::Unknown;
    path = path.parent_path() / next;
  }
  return E_TargetKind::Unknown;
}

E_TargetKind Look(const char* pszPath, S_TargetName& name) {
  if (stat(pszPath, &name.status) != 0) {
    return errno == ENOENT ? E_TargetKind::New : E_TargetKind::Unknown;
  }
  if (!S_ISREG(name.status.st_mode)) return E_TargetKind::Other;
  return Follow(pszPath, name.status, &name.strPath);
}

}  // namespace

S_TargetName LookAtTarget(const char* pszPath) {
  S_TargetName name;
  name.strPath = pszPath;
  if (name.strPath.empty()) {
    errno = ENOENT;
    return name;
  }
  for (int i = 0; i < kLooks && name.eKind == E_TargetKind::Unknown; ++i) {
    name.eKind = Look(pszPath, name);
  }
  return name;
}

std::string NewPathOf(const char* pszPath) {
  std::filesystem::path path = pszPath;
  std::error_code error;
  struct stat named {};
  for (int i = 0; i <= kMostLinks; ++i) {
    if (lstat(path.c_str(), &named) != 0 || !S_ISLNK(named.st_mode)) return path.string();
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) return {};
    path = path.parent_path() / next;
  }
  return {};
}

bool IsWritable(const std::string& strPath) {
  const int nDescriptor = open(strPath.c_str(), O_WRONLY | O_CLOEXEC);
  if (nDescriptor < 0) return false;
  close(nDescriptor);
  return true;
}

std::string StemBeside(const std::string& strPath) {
  const std::size_t nSlash = strPath.rfind('/');
  const std::size_t nName = nSlash == std::string::npos ? 0 : nSlash + 1;
  return strPath.substr(0, nName + kLongestName - C_Replacement::kNumberLength);
}

}  // namespace vcm
