// SPDX-License-Identifier: Apache-2.0
#include "base/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {
namespace {

void WaitForLock(int nFile) {
  while (flock(nFile, LOCK_EX) != 0 && errno == EINTR) ThrowIfInterrupted();
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}
bool IsUnchanged(const struct stat& a, const struct stat& b) {
  return IsSameFile(a, b) && a.st_size == b.st_size && a.st_ctim.tv_sec == b.st_ctim.tv_sec &&
         a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

}  // namespace

// The program that had the lock before may have put a new file there. That one is not locked yet,
// so we try again.
C_FileLock::C_FileLock(std::string strPath) : m_strPath(std::move(strPath)) {
  do {
    // A pipe must not be waited for.
    m_file = C_Descriptor(open(m_strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (m_file.Get() < 0) return;
    WaitForLock(m_file.Get());
  } while (!IsStillThere());
}

bool C_FileLock::IsStillThere() {
  struct stat now {};
  if (fstat(m_file.Get(), &m_status) != 0 || stat(m_strPath.c_str(), &now) != 0) return true;
  return IsSameFile(m_status, now);
}

void C_FileLock::CheckUnchanged() const {
  if (m_file.Get() < 0) return;
  struct stat now {};
  if (stat(m_strPath.c_str(), &now) == 0 && IsUnchanged(m_status, now)) return;
  throw C_Failure(m_strPath, "nothing is changed", "it has changed meanwhile");
}

void TakePlaceOf(const std::optional<C_FileLock>& lock, I_NewFile& made) {
  made.BringToDisk();
  if (lock) lock->CheckUnchanged();
  made.TakePlace();
}

}  // namespace tool
