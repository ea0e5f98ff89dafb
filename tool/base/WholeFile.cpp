// SPDX-License-Identifier: Apache-2.0
#include "base/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <span>

#include "base/Descriptor.h"
#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {
namespace {

constexpr mode_t kAnyone = 0666;  // what the user's mask leaves of it
constexpr mode_t kPermissions = 07777;
constexpr int kAttempts = 1000;

// What a link leads to.
std::string RealPath(const std::string& strPath) {
  std::error_code error;
  const auto path = std::filesystem::canonical(strPath, error);
  return error ? strPath : path.string();
}

// A file beside the target. It is gone at the end, unless it got the name of the target.
class C_Beside {
 public:
  explicit C_Beside(const std::string& strTarget) : m_strTarget(strTarget), m_file(Make()) {}
  ~C_Beside() {
    if (!m_strName.empty()) unlink(m_strName.c_str());
  }
  C_Beside(const C_Beside&) = delete;
  C_Beside& operator=(const C_Beside&) = delete;

  [[nodiscard]] int File() const noexcept { return m_file.Get(); }

  void Replace() {
    if (std::rename(m_strName.c_str(), m_strTarget.c_str()) != 0) Fail("cannot be written");
    m_strName.clear();
  }
  void Appear() {
    const bool bMoved = renameat2(AT_FDCWD, m_strName.c_str(), AT_FDCWD, m_strTarget.c_str(),
                                  RENAME_NOREPLACE) == 0;
    if (bMoved) {
      m_strName.clear();
      return;
    }
    // Not every file system knows that; most of those that do not have links.
    const bool bUnknown = errno == EINVAL || errno == ENOSYS;
    if (bUnknown && link(m_strName.c_str(), m_strTarget.c_str()) == 0) return;
    Fail(errno == EEXIST ? "is not written" : "cannot be written");
  }

 private:
  C_Descriptor Make() {
    const std::string strFolder = std::filesystem::path(m_strTarget).parent_path().string();
    const std::string strBase = (strFolder.empty() ? "." : strFolder) + "/.voxtool-" +
                                std::to_string(getpid()) + "-";
    for (int i = 0; i < kAttempts; ++i) {
      const std::string strName = strBase + std::to_string(i);
      const int nFile = open(strName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kAnyone);
      if (nFile >= 0) {
        m_strName = strName;
        return C_Descriptor(nFile);
      }
      if (errno != EEXIST) break;
    }
    Fail("cannot be written");
  }
  [[noreturn]] void Fail(std::string_view what) const {
    throw C_Failure(m_strTarget, what, SystemReason(errno));
  }

  std::string m_strTarget;
  std::string m_strName;
  C_Descriptor m_file;
};

void KeepPermissions(int nFile, const std::string& strTarget) {
  struct stat status {};
  if (stat(strTarget.c_str(), &status) != 0) return;
  static_cast<void>(fchmod(nFile, status.st_mode & kPermissions));
}

}  // namespace

void RefuseTakenName(const std::string& strPath, bool bReplace) {
  struct stat status {};
  if (lstat(strPath.c_str(), &status) != 0) return;
  if (!bReplace) throw C_Failure(strPath, "is not written", "it exists; -f writes over it");
  const bool bThere = stat(strPath.c_str(), &status) == 0;
  if (bThere && !S_ISREG(status.st_mode)) {
    throw C_Failure(strPath, "is not written", "it is no regular file");
  }
}

void WriteWholeFile(const std::string& strPath, std::string_view bytes, bool bReplace) {
  RefuseTakenName(strPath, bReplace);
  const std::string strTarget = bReplace ? RealPath(strPath) : strPath;
  C_Beside beside(strTarget);
  WriteAll(beside.File(), std::as_bytes(std::span(bytes)), strPath);
  if (bReplace) KeepPermissions(beside.File(), strTarget);
  if (fsync(beside.File()) != 0 && errno != EINVAL) {
    throw C_Failure(strPath, "cannot be written", SystemReason(errno));
  }
  ThrowIfInterrupted();
  if (bReplace) {
    beside.Replace();
  } else {
    beside.Appear();
  }
}

}  // namespace tool
