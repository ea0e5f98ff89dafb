// SPDX-License-Identifier: Apache-2.0
#include "TargetFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace vcm {
namespace {

constexpr int kMostLinks = 40;  // as many as the system follows
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

// The path after all links, and the state of the regular file there. Empty when there is no regular
// file under a name that could be given to another file.
std::optional<std::string> FindRegularFile(const char* pszPath, struct stat* pStatus) {
  if (pszPath == nullptr || stat(pszPath, pStatus) != 0 || !S_ISREG(pStatus->st_mode)) return {};
  std::filesystem::path path(pszPath);
  struct stat named {};
  std::error_code error;
  for (int i = 0; i <= kMostLinks && lstat(path.c_str(), &named) == 0; ++i) {
    if (!S_ISLNK(named.st_mode)) {
      return IsSameFile(named, *pStatus) ? std::optional(path.string()) : std::nullopt;
    }
    if (IsOpenStream(named)) return {};
    path = path.parent_path() / std::filesystem::read_symlink(path, error);
  }
  return {};
}

// The old file's path, cut where the name beside it would otherwise be too long.
std::string StemOf(const std::string& strOldFile) {
  const std::size_t nSlash = strOldFile.rfind('/');
  const std::size_t nName = nSlash == std::string::npos ? 0 : nSlash + 1;
  return strOldFile.substr(0, nName + kLongestName - C_Replacement::kNumberLength);
}

// Whether "wb" could open the file. This does not empty it.
bool IsWritable(const std::string& strPath) {
  const int nDescriptor = open(strPath.c_str(), O_WRONLY | O_CLOEXEC);
  if (nDescriptor < 0) return false;
  close(nDescriptor);
  return true;
}

// What the system says when a folder takes no second file, or does not let the file be renamed over
// the old one, as in a folder that others share, or where a file system is mounted on the old file.
bool IsForbidden(int nError) {
  return nError == EACCES || nError == EPERM || nError == EROFS || nError == ENAMETOOLONG ||
         nError == EBUSY || nError == EXDEV;
}

bool CopyInPlace(const std::string& strFrom, const std::string& strTo) {
  const C_FilePtr from = OpenFile(strFrom.c_str(), "rb");
  if (!from) return false;
  C_FilePtr to = OpenFile(strTo.c_str(), "wb");
  if (!to) return false;
  const bool bCopied = CopyRest(from.get(), to.get());
  return CloseChecked(std::move(to)) && bCopied;
}

}  // namespace

C_TargetFile::C_TargetFile(const char* pszPath) {
  if (const auto strOldFile = FindRegularFile(pszPath, &m_oldStatus)) {
    if (!IsWritable(*strOldFile)) return;
    m_strOldFile = *strOldFile;
    m_replacement.emplace(StemOf(m_strOldFile));
    if (m_replacement->Stream() != nullptr || !IsForbidden(m_replacement->Error())) return;
    m_replacement.reset();
  }
  m_file = OpenFile(pszPath, "wb");
}

std::FILE* C_TargetFile::Stream() const noexcept {
  return m_replacement ? m_replacement->Stream() : m_file.get();
}

bool C_TargetFile::Commit(bool bWritten) {
  if (!m_replacement) return CloseChecked(std::move(m_file)) && bWritten;
  if (!bWritten || !m_replacement->TakeOwnerAndMode(m_oldStatus)) return false;
  if (m_replacement->TakePlaceOf(m_strOldFile)) return true;
  return IsForbidden(m_replacement->Error()) && CopyInPlace(m_replacement->Path(), m_strOldFile);
}

}  // namespace vcm
