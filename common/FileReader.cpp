// SPDX-License-Identifier: Apache-2.0
#include "FileReader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

namespace vcm {

C_FileReader::C_FileReader(C_FilePtr file) : C_FileReader(file.get()) { m_owned = std::move(file); }

C_FileReader::C_FileReader(std::FILE* pFile) : m_pFile(pFile) { Measure(); }

void C_FileReader::Close() noexcept {
  m_pFile = nullptr;
  m_owned.reset();
  m_first.cbHeld = 0;
  m_moving.cbHeld = 0;
}

std::optional<std::uint64_t> C_FileReader::Measure() noexcept {
  struct stat info {};
  m_qwLength.reset();
  if (m_pFile == nullptr) return m_qwLength;
  if (fileno(m_pFile) < 0) {
    m_qwLength = SizeAndSeekEnd(m_pFile);
  } else if (fstat(fileno(m_pFile), &info) == 0 && S_ISREG(info.st_mode)) {
    m_qwLength = static_cast<std::uint64_t>(info.st_size);
  }
  return m_qwLength;
}

std::optional<std::size_t> C_FileReader::ReadSome(std::uint64_t qwPosition,
                                                  std::span<std::uint8_t> bytes) noexcept {
  if (IsEnd(qwPosition)) return 0;
  if (bytes.size() > kWindow) return ReadFile(qwPosition, bytes);
  std::span<const std::uint8_t> held = m_first.From(qwPosition);
  if (held.size() < bytes.size()) held = m_moving.From(qwPosition);
  if (held.size() < bytes.size()) {
    S_Window& window = m_first.cbHeld == 0 ? m_first : m_moving;
    window.cbHeld = 0;
    const auto cbRead = ReadFile(qwPosition, window.bytes);
    if (!cbRead) return std::nullopt;
    window.qwPosition = qwPosition;
    window.cbHeld = *cbRead;
    held = window.From(qwPosition);
  }
  const std::size_t cbTaken = std::min(held.size(), bytes.size());
  if (cbTaken > 0) std::memcpy(bytes.data(), held.data(), cbTaken);
  return cbTaken;
}

bool C_FileReader::ReadExact(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) noexcept {
  return ReadSome(qwPosition, bytes) == bytes.size();
}

std::span<const std::uint8_t> C_FileReader::S_Window::From(std::uint64_t qwAt) const noexcept {
  if (qwAt < qwPosition || qwAt - qwPosition >= cbHeld) return {};
  return std::span(bytes).first(cbHeld).subspan(static_cast<std::size_t>(qwAt - qwPosition));
}

std::optional<std::size_t> C_FileReader::ReadFile(std::uint64_t qwPosition,
                                                  std::span<std::uint8_t> bytes) noexcept {
  constexpr auto qwLast = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
  if (m_pFile == nullptr || qwPosition > qwLast - bytes.size()) return std::nullopt;
  if (fileno(m_pFile) < 0) {
    return SeekTo(m_pFile, qwPosition) ? vcm::ReadSome(m_pFile, bytes) : std::nullopt;
  }
  std::size_t cbRead = 0;
  while (cbRead < bytes.size()) {
    const ssize_t nRead = pread(fileno(m_pFile), bytes.data() + cbRead, bytes.size() - cbRead,
                                static_cast<off_t>(qwPosition + cbRead));
    if (nRead < 0) return std::nullopt;
    cbRead += static_cast<std::size_t>(nRead);
    // Part of what was asked for need not be all that the file has.
    if (IsEnd(qwPosition + cbRead)) break;
    if (nRead > 0) continue;
    // The file is shorter now than it was, or it cannot be read.
    if (qwPosition + cbRead < Measure().value_or(std::numeric_limits<std::uint64_t>::max())) {
      return std::nullopt;
    }
    break;
  }
  return cbRead;
}

// Files that the system makes up have no length and may hold something.
bool C_FileReader::IsEnd(std::uint64_t qwPosition) const noexcept {
  return m_qwLength.value_or(0) > 0 && qwPosition >= *m_qwLength;
}

std::optional<bool> C_FileReader::CanBeAt(std::uint64_t qwPosition) noexcept {
  if (m_pFile == nullptr) return std::nullopt;
  if (SeekTo(m_pFile, qwPosition)) return true;
  return errno == EINVAL ? std::optional(false) : std::nullopt;
}

}  // namespace vcm
