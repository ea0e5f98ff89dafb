// SPDX-License-Identifier: Apache-2.0
#include "sound/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace tool {
namespace {

std::int64_t LengthOf(int nFile) {
  struct stat status {};
  return fstat(nFile, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

}  // namespace

C_FileBytes::C_FileBytes(C_Descriptor file)
    : m_file(std::move(file)), m_nLength(LengthOf(m_file.Get())) {}

void C_FileBytes::Confine(std::uint64_t qwAt, std::uint64_t qwBytes) {
  m_qwBegin = qwAt;
  m_qwMost = qwBytes;
  m_qwPosition = 0;
  if (m_nLength >= 0) m_nLength = static_cast<std::int64_t>(qwBytes);
}

void C_FileBytes::Cover(std::uint64_t qwAt, std::vector<std::uint8_t> bytes) {
  m_qwCovered = qwAt;
  m_cover = std::move(bytes);
}

C_FileBytes C_FileBytes::Again() const {
  return C_FileBytes(C_Descriptor(fcntl(m_file.Get(), F_DUPFD_CLOEXEC, 0)));
}

std::int64_t C_FileBytes::Read(void* pBytes, std::size_t cbBytes) {
  const std::uint64_t qwAt = m_qwPosition;
  auto* const pRead = static_cast<std::byte*>(pBytes);
  const std::int64_t nRead = ReadAsItIs(pRead, cbBytes);
  if (nRead <= 0) return nRead;
  const std::uint64_t qwFrom = std::max(qwAt, m_qwCovered);
  const std::uint64_t qwTo = std::min(m_qwPosition, m_qwCovered + m_cover.size());
  if (qwFrom < qwTo) {
    std::memcpy(pRead + (qwFrom - qwAt), m_cover.data() + (qwFrom - m_qwCovered),
                static_cast<std::size_t>(qwTo - qwFrom));
  }
  return nRead;
}

std::int64_t C_FileBytes::ReadAsItIs(std::byte* pBytes, std::size_t cbBytes) {
  const std::uint64_t qwLeft = m_qwMost - std::min(m_qwMost, m_qwPosition);
  cbBytes = static_cast<std::size_t>(std::min<std::uint64_t>(cbBytes, qwLeft));
  std::size_t cbDone = 0;
  while (cbDone < cbBytes) {
    const ssize_t cbRead = pread(m_file.Get(), pBytes + cbDone, cbBytes - cbDone,
                                 static_cast<off_t>(m_qwBegin + m_qwPosition));
    if (cbRead < 0 && errno == EINTR) continue;
    if (cbRead < 0) m_nError = errno;
    if (cbRead < 0 && cbDone == 0) return -1;
    if (cbRead <= 0) break;
    cbDone += static_cast<std::size_t>(cbRead);
    m_qwPosition += static_cast<std::size_t>(cbRead);
  }
  return static_cast<std::int64_t>(cbDone);
}

}  // namespace tool
