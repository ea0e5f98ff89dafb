// SPDX-License-Identifier: Apache-2.0
#include "file/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace toolbox {
namespace {

OSStatus StatusOfErrno(int nError) {
  switch (nError) {
    case EACCES:
    case EPERM:
      return kAudioFilePermissionsError;
    case ENOENT:
    case ENOTDIR:
      return kAudioFileFileNotFoundError;
    default:
      return kAudioFileUnspecifiedError;
  }
}

}  // namespace

C_FileDescriptor::~C_FileDescriptor() {
  if (m_fd >= 0) ::close(m_fd);
}

OSStatus C_FileDescriptor::Open(const std::string& path) {
  m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (m_fd < 0) return StatusOfErrno(errno);
  struct stat info {};
  if (::fstat(m_fd, &info) != 0) return StatusOfErrno(errno);
  if (!S_ISREG(info.st_mode)) return kAudioFileUnsupportedFileTypeError;
  m_cbSize = static_cast<UInt64>(info.st_size);
  return noErr;
}

bool C_FileDescriptor::IsCutBefore(UInt64 qwOffset) const noexcept {
  struct stat info {};
  if (::fstat(m_fd, &info) != 0) return false;
  const auto cbNow = static_cast<UInt64>(info.st_size);
  return cbNow < m_cbSize && qwOffset >= cbNow;
}

std::size_t C_FileDescriptor::ReadAt(UInt64 qwOffset, void* pBuffer, std::size_t cbWanted) const {
  auto* pbyTo = static_cast<char*>(pBuffer);
  cbWanted = std::min<UInt64>(cbWanted, m_cbSize - std::min(qwOffset, m_cbSize));
  std::size_t cbDone = 0;
  while (cbDone < cbWanted) {
    const ssize_t nRead =
        ::pread(m_fd, pbyTo + cbDone, cbWanted - cbDone, static_cast<off_t>(qwOffset + cbDone));
    if (nRead < 0 && errno == EINTR) continue;
    if (nRead < 0) m_bReadError = true;
    if (nRead <= 0) break;
    cbDone += static_cast<std::size_t>(nRead);
  }
  return cbDone;
}

}  // namespace toolbox
