// SPDX-License-Identifier: Apache-2.0
#include "Replacement.h"

#include <fcntl.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif

#include <cerrno>
#include <utility>
#include <vector>

#include "TempFile.h"
#include "VCM.h"

namespace vcm {
namespace {

constexpr int kNameAttempts = 10000;
constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr mode_t kModeBits = kPermissions | S_ISUID | S_ISGID | S_ISVTX;
constexpr mode_t kGroup = S_IRWXG;
constexpr mode_t kOthers = S_IRWXO;
constexpr int kGroupShift = 3;
constexpr const char* kNameFormat = "%s.%x";

std::string NumberedName(const std::string& strStem, unsigned int dwNumber) {
  std::vector<char> szName(strStem.size() + C_Replacement::kNumberLength + 1);
  VCM_stprintf(szName.data(), szName.size(), kNameFormat, strStem.c_str(), dwNumber);
  return szName.data();
}

// False when the old file has a list that the new file cannot get. A list that the folder has given
// to the new file is removed: it may allow what the old file did not.
bool CopyAccessList([[maybe_unused]] const std::string& strOldFile,
                    [[maybe_unused]] int nDescriptor) {
#ifdef __linux__
  static constexpr const char* kList = "system.posix_acl_access";
  const ssize_t cbList = getxattr(strOldFile.c_str(), kList, nullptr, 0);
  if (cbList < 0) {
    return fremovexattr(nDescriptor, kList) == 0 || errno == ENODATA || errno == ENOTSUP;
  }
  std::vector<char> list(static_cast<std::size_t>(cbList));
  return getxattr(strOldFile.c_str(), kList, list.data(), list.size()) == cbList &&
         fsetxattr(nDescriptor, kList, list.data(), list.size(), 0) == 0;
#else
  return true;
#endif
}

// Renames unless something has the name. Nothing prevents that something gets it between the two
// steps; this is for file systems that have no better way.
bool RenameToFree(const std::string& strFrom, const std::string& strTo) {
  struct stat status {};
  return lstat(strTo.c_str(), &status) != 0 && errno == ENOENT &&
         std::rename(strFrom.c_str(), strTo.c_str()) == 0;
}

// A second stream of a file; null where there cannot be one.
C_FilePtr SecondStream(std::FILE* pFile) {
  const int nDescriptor = fcntl(fileno(pFile), F_DUPFD_CLOEXEC, 0);
  if (nDescriptor < 0) return {};
  C_FilePtr second(fdopen(nDescriptor, "r+b"));
  if (!second) close(nDescriptor);
  return second;
}

}  // namespace

C_Replacement::C_Replacement(const std::string& strStem, unsigned int (*pfnNumber)())
    : C_Replacement(strStem, S_IRUSR | S_IWUSR, pfnNumber) {}

C_Replacement::C_Replacement(const std::string& strStem, unsigned int dwMode,
                             unsigned int (*pfnNumber)()) {
  for (int i = 0; i < kNameAttempts && !m_file; ++i) {
    m_strPath = NumberedName(strStem, pfnNumber());
    m_file = CreateExclusive(m_strPath, dwMode);
    m_nError = m_file ? 0 : errno;
    if (m_nError != EEXIST) break;
  }
  if (!m_file) m_strPath.clear();
}

C_Replacement::~C_Replacement() {
  m_file.reset();
  if (!m_strPath.empty()) unlink(m_strPath.c_str());
}

// Sets the owner before the mode, because a change of owner clears the special mode bits. These
// bits are left out when the owner or the group cannot be set: the new file then belongs to
// somebody else. A write would clear the bits again.
bool C_Replacement::TakeOwnerAndMode(const struct stat& old, const std::string& strOldFile) {
  m_nError = 0;
  if (std::fflush(m_file.get()) != 0) return false;
  const int nDescriptor = fileno(m_file.get());
  const bool bGroup = fchown(nDescriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
  const bool bOwner = fchown(nDescriptor, old.st_uid, static_cast<gid_t>(-1)) == 0;
  const bool bList = CopyAccessList(strOldFile, nDescriptor);
  mode_t nMode = old.st_mode & (bGroup && bOwner ? kModeBits : kPermissions);
  // The group bits of a file with a list are not the group's own.
  if (!bList) nMode &= ~kGroup | (nMode & kOthers) << kGroupShift;
  if (fchmod(nDescriptor, nMode) == 0) return true;
  m_nError = errno;
  // Some file systems have one mode for all files, and refuse to set any.
  struct stat now {};
  return fstat(nDescriptor, &now) == 0 && (now.st_mode & kModeBits) == nMode;
}

bool C_Replacement::CloseOnDisk() {
  if (!m_file) return m_bOnDisk;
  m_bOnDisk = vcm::CloseOnDisk(std::move(m_file));
  return m_bOnDisk;
}

bool C_Replacement::TakePlaceOf(const std::string& strOldFile) {
  m_nError = 0;
  if (!CloseOnDisk()) return false;
  if (std::rename(m_strPath.c_str(), strOldFile.c_str()) != 0) {
    m_nError = errno;
    return false;
  }
  m_strPath.clear();
  return true;
}

bool C_Replacement::TakeNewName(const std::string& strNewFile) {
  m_nError = 0;
  // Of a file that is not flushed, less would reach the disk than is there.
  if (std::fflush(m_file.get()) != 0) return false;
  // Opened by its path again, the file could be another one.
  C_FilePtr second = SecondStream(m_file.get());
  if (!CloseOnDisk()) return false;
  // A second name is only given when nothing has it. Some file systems give none.
  if (link(m_strPath.c_str(), strNewFile.c_str()) == 0) {
    unlink(m_strPath.c_str());
    m_strPath.clear();
    return true;
  }
  m_nError = errno;
  if (m_nError == EEXIST) m_file = std::move(second);
  if (m_nError == EEXIST || !RenameToFree(m_strPath, strNewFile)) return false;
  m_nError = 0;
  m_strPath.clear();
  return true;
}

}  // namespace vcm
