// SPDX-License-Identifier: Apache-2.0
#include "copyfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kPiece = 65536;
constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;

class C_Descriptor {
 public:
  explicit C_Descriptor(int nDescriptor) : m_nDescriptor(nDescriptor) {}
  ~C_Descriptor() { static_cast<void>(Close()); }
  C_Descriptor(const C_Descriptor&) = delete;
  C_Descriptor& operator=(const C_Descriptor&) = delete;

  [[nodiscard]] int Get() const { return m_nDescriptor; }
  [[nodiscard]] bool IsOpen() const { return m_nDescriptor >= 0; }
  // False when the last of the data could not be written.
  bool Close() {
    if (!IsOpen()) return true;
    const int nDescriptor = m_nDescriptor;
    m_nDescriptor = -1;
    return close(nDescriptor) == 0;
  }

 private:
  int m_nDescriptor;
};

bool WriteAll(int nTo, const char* pPiece, std::size_t cbPiece) {
  while (cbPiece > 0) {
    const ssize_t nWritten = write(nTo, pPiece, cbPiece);
    if (nWritten < 0 && errno == EINTR) continue;
    if (nWritten < 0) return false;
    pPiece += nWritten;
    cbPiece -= static_cast<std::size_t>(nWritten);
  }
  return true;
}

bool CopyData(int nFrom, int nTo) {
  std::array<char, kPiece> piece;
  for (;;) {
    const ssize_t nRead = read(nFrom, piece.data(), piece.size());
    if (nRead < 0 && errno == EINTR) continue;
    if (nRead <= 0) return nRead == 0;
    if (!WriteAll(nTo, piece.data(), static_cast<std::size_t>(nRead))) return false;
  }
}

std::vector<char> ListAttributes(int nFrom) {
  const ssize_t nSize = flistxattr(nFrom, nullptr, 0);
  if (nSize <= 0) return {};
  std::vector<char> names(static_cast<std::size_t>(nSize));
  const ssize_t nListed = flistxattr(nFrom, names.data(), names.size());
  names.resize(nListed > 0 ? static_cast<std::size_t>(nListed) : 0);
  return names;
}

void CopyAttribute(int nFrom, int nTo, const char* pszName) {
  const ssize_t nSize = fgetxattr(nFrom, pszName, nullptr, 0);
  if (nSize < 0) return;
  std::vector<char> value(static_cast<std::size_t>(nSize));
  const ssize_t nRead = fgetxattr(nFrom, pszName, value.data(), value.size());
  if (nRead < 0) return;
  static_cast<void>(fsetxattr(nTo, pszName, value.data(), static_cast<std::size_t>(nRead), 0));
}

void CopyMetadata(int nFrom, int nTo, const struct stat& info) {
  static_cast<void>(fchmod(nTo, info.st_mode & kPermissions));
  const std::vector<char> names = ListAttributes(nFrom);
  for (std::size_t i = 0; i < names.size(); i += std::string(&names[i]).size() + 1) {
    CopyAttribute(nFrom, nTo, &names[i]);
  }
  const std::array<timespec, 2> times = {info.st_atim, info.st_mtim};
  static_cast<void>(futimens(nTo, times.data()));
}

// False, with errno set, also when memory is missing.
bool CopyInto(int nFrom, C_Descriptor& to, const struct stat& info) {
  if (!CopyData(nFrom, to.Get())) return false;
  try {
    CopyMetadata(nFrom, to.Get(), info);
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return false;
  }
  return to.Close();
}

int Fail(int nError) {
  errno = nError;
  return -1;
}

}  // namespace

int copyfile(const char* pszFrom, const char* pszTo, copyfile_state_t /*state*/,
             copyfile_flags_t dwFlags) {
  if (dwFlags != COPYFILE_ALL) return Fail(ENOTSUP);
  // Without O_NONBLOCK, opening a pipe would wait forever.
  const C_Descriptor from(open(pszFrom, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat info {};
  if (!from.IsOpen() || fstat(from.Get(), &info) != 0) return -1;
  if (!S_ISREG(info.st_mode)) return Fail(ENOTSUP);
  C_Descriptor to(
      open(pszTo, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!to.IsOpen()) return -1;
  if (CopyInto(from.Get(), to, info)) return 0;
  const int nError = errno;
  static_cast<void>(unlink(pszTo));
  return Fail(nError);
}
