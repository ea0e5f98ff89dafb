// SPDX-License-Identifier: Apache-2.0
#include "base/ReplacedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

#include "base/Failure.h"

namespace tool {
namespace {

constexpr int kAttempts = 100;
constexpr std::size_t kLongestName = 200;  // of the 255 bytes that file systems allow
constexpr mode_t kModeOfNew = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr mode_t kModeOfReplacement = S_IRUSR | S_IWUSR;
constexpr const char* kAccessList = "system.posix_acl_access";

[[noreturn]] void Fail(const std::string& strName, const char* pszWhat) {
  throw C_Failure(strName, pszWhat, SystemReason(errno));
}

// The path after all links; the path itself when nothing has it.
std::string Resolved(const std::string& strPath) {
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(strPath.c_str(), nullptr),
                                                             &std::free);
  if (resolved) return resolved.get();
  struct stat status {};
  const bool bLink = lstat(strPath.c_str(), &status) == 0;
  if (errno != ENOENT || bLink) Fail(strPath, "cannot be written");
  return strPath;
}

std::string FolderOf(const std::string& strPath) {
  const std::size_t nSlash = strPath.rfind('/');
  return nSlash == std::string::npos ? "." : strPath.substr(0, nSlash + 1);
}

// Beside the path, without the extension of a sound.
std::string NewName(const std::string& strPath) {
  std::random_device device;
  std::array<char, 16> szNumber{};
  static_cast<void>(std::snprintf(szNumber.data(), szNumber.size(), ".%08x", device()));
  const std::size_t nName = strPath.rfind('/') + 1;
  return strPath.substr(0, nName) + strPath.substr(nName, kLongestName) + szNumber.data();
}

// Gives the new file the access list of the old one. A list that the folder has given to the new
// file is removed: it may allow what the old file did not. False when it cannot.
bool CopyAccessList(const std::string& strOld, int nNew) {
  const ssize_t cbList = getxattr(strOld.c_str(), kAccessList, nullptr, 0);
  if (cbList < 0) {
    return fremovexattr(nNew, kAccessList) == 0 || errno == ENODATA || errno == ENOTSUP;
  }
  std::vector<char> list(static_cast<std::size_t>(cbList));
  return getxattr(strOld.c_str(), kAccessList, list.data(), list.size()) == cbList &&
         fsetxattr(nNew, kAccessList, list.data(), list.size(), 0) == 0;
}

std::vector<char> ListOfAttributes(const std::string& strPath) {
  const ssize_t cbNames = listxattr(strPath.c_str(), nullptr, 0);
  std::vector<char> names(cbNames > 0 ? static_cast<std::size_t>(cbNames) : 0);
  const ssize_t cbHeld = names.empty() ? 0 : listxattr(strPath.c_str(), names.data(), names.size());
  names.resize(cbHeld > 0 ? static_cast<std::size_t>(cbHeld) : 0);
  return names;
}

bool CopyAttribute(const std::string& strOld, int nNew, const char* pszName) {
  const ssize_t cbValue = getxattr(strOld.c_str(), pszName, nullptr, 0);
  if (cbValue < 0) return errno == ENODATA;
  std::vector<char> value(static_cast<std::size_t>(cbValue));
  return getxattr(strOld.c_str(), pszName, value.data(), value.size()) == cbValue &&
         fsetxattr(nNew, pszName, value.data(), value.size(), 0) == 0;
}

// Those that programs of the user have given the file. False when one cannot be copied.
bool CopyUserAttributes(const std::string& strOld, int nNew) {
  const std::vector<char> names = ListOfAttributes(strOld);
  for (std::size_t n = 0; n < names.size();) {
    const std::string_view name = &names[n];
    if (name.starts_with("user.") && !CopyAttribute(strOld, nNew, name.data())) return false;
    n += name.size() + 1;
  }
  return true;
}

// The group may then do no more than others may.
mode_t WithoutGroup(mode_t dwMode) {
  return (dwMode & ~mode_t{S_IRWXG}) | ((dwMode & mode_t{S_IRWXO}) << 3U & dwMode);
}

// Fails where something has the name meanwhile.
bool TakesFreeName(const std::string& strNew, const std::string& strPath) {
  if (renameat2(AT_FDCWD, strNew.c_str(), AT_FDCWD, strPath.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  // Not all file systems can do that.
  if (errno != EINVAL || link(strNew.c_str(), strPath.c_str()) != 0) return false;
  unlink(strNew.c_str());
  return true;
}

void SyncFolder(const std::string& strPath) {
  const C_Descriptor folder(open(FolderOf(strPath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.Get() >= 0) static_cast<void>(fsync(folder.Get()));
}

}  // namespace

C_ReplacedFile::C_ReplacedFile(const std::string& strPath, bool bMayReplace)
    : m_strName(strPath), m_strPath(Resolved(strPath)), m_bMayReplace(bMayReplace) {
  struct stat status {};
  m_bExists = stat(m_strPath.c_str(), &status) == 0;
  if (m_bExists && !S_ISREG(status.st_mode)) {
    throw C_Failure(m_strName, "cannot be written", "it is not a regular file");
  }
  if (m_bExists && !bMayReplace) throw C_Failure(m_strName, "exists", "-f replaces it");
  if (m_bExists && access(m_strPath.c_str(), W_OK) != 0) Fail(m_strName, "cannot be written");
  Create();
}

C_ReplacedFile::~C_ReplacedFile() {
  if (!m_strNew.empty()) unlink(m_strNew.c_str());
}

void C_ReplacedFile::Create() {
  for (int i = 0; i < kAttempts && m_file.Get() < 0; ++i) {
    const std::string strNew = NewName(m_strPath);
    m_file = C_Descriptor(open(strNew.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                               m_bExists ? kModeOfReplacement : kModeOfNew));
    if (m_file.Get() >= 0) m_strNew = strNew;
    if (m_file.Get() < 0 && errno != EEXIST) break;
  }
  if (m_file.Get() < 0) Fail(m_strName, "the new file cannot be made beside it");
}

void C_ReplacedFile::Write(std::span<const std::byte> bytes) {
  WriteAll(m_file.Get(), bytes, m_strName);
}

// Only some may give files to other owners; without that, the new one is the user's.
void C_ReplacedFile::TakeRightsOfOld() {
  struct stat old {};
  if (stat(m_strPath.c_str(), &old) != 0) Fail(m_strName, "cannot be replaced");
  if (fchown(m_file.Get(), old.st_uid, old.st_gid) != 0) {
    static_cast<void>(fchown(m_file.Get(), static_cast<uid_t>(-1), old.st_gid) == 0);
  }
  constexpr mode_t kAllBits = S_IRWXU | S_IRWXG | S_IRWXO | S_ISUID | S_ISGID | S_ISVTX;
  const mode_t dwMode = old.st_mode & kAllBits;
  if (!CopyUserAttributes(m_strPath, m_file.Get())) Fail(m_strName, "cannot be replaced");
  // With a list, the mode says how much of it holds.
  const bool bList = CopyAccessList(m_strPath, m_file.Get());
  if (fchmod(m_file.Get(), bList ? dwMode : WithoutGroup(dwMode)) != 0) {
    Fail(m_strName, "cannot be replaced");
  }
}

void C_ReplacedFile::BringToDisk() {
  if (m_bExists) TakeRightsOfOld();
  if (fsync(m_file.Get()) != 0) Fail(m_strName, "cannot be written");
  m_bOnDisk = true;
}

void C_ReplacedFile::TakePlace() {
  if (!m_bOnDisk) BringToDisk();
  const bool bDone = m_bMayReplace ? rename(m_strNew.c_str(), m_strPath.c_str()) == 0
                                   : TakesFreeName(m_strNew, m_strPath);
  if (!bDone) Fail(m_strName, "the new file cannot take its place");
  m_strNew.clear();
  SyncFolder(m_strPath);
}

}  // namespace tool
