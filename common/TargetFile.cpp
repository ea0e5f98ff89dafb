// SPDX-License-Identifier: Apache-2.0
#include "TargetFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

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

enum class Target { New, Regular, Other, Unknown };

// Where the links lead that begin at path, which names a file with this state.
Target Follow(std::filesystem::path path, const struct stat& status, std::string* pstrOldFile) {
  struct stat named {};
  std::error_code error;
  for (int i = 0; i <= kMostLinks && lstat(path.c_str(), &named) == 0; ++i) {
    if (!S_ISLNK(named.st_mode)) {
      *pstrOldFile = path.string();
      return IsSameFile(named, status) ? Target::Regular : Target::Unknown;
    }
    if (IsOpenStream(named)) return Target::Other;
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) return Target::Unknown;
    path = path.parent_path() / next;
  }
  return Target::Unknown;
}

// What the path names. For a regular file, also its path after all links, and its state.
Target Look(const char* pszPath, std::string* pstrOldFile, struct stat* pStatus) {
  if (stat(pszPath, pStatus) != 0) return errno == ENOENT ? Target::New : Target::Unknown;
  if (!S_ISREG(pStatus->st_mode)) return Target::Other;
  return Follow(pszPath, *pStatus, pstrOldFile);
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

// What the system says when the new file must not be made, given its mode or renamed.
constexpr auto kForbidden =
    std::to_array({EACCES, EPERM, EROFS, ENAMETOOLONG, EBUSY, EXDEV, ENOTSUP, EILSEQ});

bool IsForbidden(int nError) { return std::ranges::find(kForbidden, nError) != kForbidden.end(); }

// Makes sure that so many bytes can be written, and leaves the file as it was where they cannot.
bool MakeRoom(int nDescriptor, off_t nSize) {
  struct stat status {};
  if (fstat(nDescriptor, &status) != 0) return false;
  if (nSize == 0 || posix_fallocate(nDescriptor, 0, nSize) == 0) return true;
  // Some file systems let the file grow until they are full.
  static_cast<void>(!ftruncate(nDescriptor, status.st_size));
  return false;
}

// Writes over the old file once there is room for the new contents.
bool CopyInPlace(const std::string& strFrom, const std::string& strTo) {
  if (chmod(strFrom.c_str(), S_IRUSR | S_IWUSR) != 0) return false;
  const C_FilePtr from = OpenFile(strFrom.c_str(), "rb");
  C_FilePtr to = OpenFile(strTo.c_str(), "r+b");
  if (!from || !to) return false;
  const auto qwSize = SizeAndSeekEnd(from.get());
  if (!qwSize || !SeekTo(from.get(), 0)) return false;
  const auto nSize = static_cast<off_t>(*qwSize);
  if (!MakeRoom(fileno(to.get()), nSize)) return false;
  const bool bCopied = CopyRest(from.get(), to.get()) && std::fflush(to.get()) == 0 &&
                       ftruncate(fileno(to.get()), nSize) == 0;
  return CloseChecked(std::move(to)) && bCopied;
}

}  // namespace

C_TargetFile::C_TargetFile(const char* pszPath) {
  if (pszPath == nullptr) return;
  // Another process may replace the file, or change a link, while it is looked at.
  auto eTarget = Target::Unknown;
  for (int i = 0; i < kLooks && eTarget == Target::Unknown; ++i) {
    eTarget = Look(pszPath, &m_strOldFile, &m_oldStatus);
  }
  if (eTarget == Target::Unknown) return;
  if (eTarget == Target::Regular) {
    if (!IsWritable(m_strOldFile)) return;
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
  if (!bWritten) return false;
  if (m_replacement->TakeOwnerAndMode(m_oldStatus, m_strOldFile) &&
      m_replacement->TakePlaceOf(m_strOldFile)) {
    return true;
  }
  return IsForbidden(m_replacement->Error()) && CopyInPlace(m_replacement->Path(), m_strOldFile);
}

}  // namespace vcm
