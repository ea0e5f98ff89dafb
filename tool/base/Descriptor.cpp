// SPDX-License-Identifier: Apache-2.0
#include "base/Descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {

C_Descriptor::C_Descriptor(C_Descriptor&& other) noexcept
    : m_nFile(std::exchange(other.m_nFile, -1)) {}

C_Descriptor& C_Descriptor::operator=(C_Descriptor&& other) noexcept {
  std::swap(m_nFile, other.m_nFile);
  return *this;
}

C_Descriptor::~C_Descriptor() {
  if (m_nFile > STDERR_FILENO) close(m_nFile);
}

namespace {

// Threads other than the first get no signals, so a read that waits would wait on. The first one
// may get its signal in the middle of a wait, which then fails.
void WaitForBytes(int nFile) {
  constexpr int kBetweenLooks = 100;  // ms
  pollfd file{nFile, POLLIN, 0};
  int nReady = 0;
  do {
    ThrowIfInterrupted();
    nReady = poll(&file, 1, kBetweenLooks);
  } while (nReady == 0 || (nReady < 0 && errno == EINTR));
}

}  // namespace

std::size_t ReadSome(int nFile, std::span<std::byte> bytes, const std::string& strName) {
  while (true) {
    WaitForBytes(nFile);
    const ssize_t cbRead = read(nFile, bytes.data(), bytes.size());
    if (cbRead >= 0) return static_cast<std::size_t>(cbRead);
    const bool bAgain = errno == EINTR || errno == EAGAIN;
    if (!bAgain) throw C_Failure(strName, "cannot be read", SystemReason(errno));
  }
}

void WriteAll(int nFile, std::span<const std::byte> bytes, const std::string& strName) {
  while (!bytes.empty()) {
    ThrowIfInterrupted();
    const ssize_t cbWritten = write(nFile, bytes.data(), bytes.size());
    if (cbWritten >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(cbWritten));
    } else if (errno == EPIPE) {
      throw C_OutputClosed();
    } else if (errno != EINTR) {
      throw C_Failure(strName, "cannot be written", SystemReason(errno));
    }
  }
}

C_Descriptor MakePrivateFile() {
  const char* const pszFolder = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe)
  std::string strPath =
      (pszFolder != nullptr && *pszFolder != '\0' ? std::string(pszFolder) : "/tmp") +
      "/voxtool-XXXXXX";
  C_Descriptor file(mkostemp(strPath.data(), O_CLOEXEC));
  if (file.Get() < 0) throw C_Failure(strPath, "cannot be made", SystemReason(errno));
  unlink(strPath.c_str());
  return file;
}

}  // namespace tool
