// SPDX-License-Identifier: Apache-2.0
//
// Little-endian access to bytes in memory: a bounded cursor for reading, an appender for writing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace vcm {

// Reads fields in file order. A read past the end returns 0 and clears Ok() for good, so a parser
// can read all its fields and check once.
class C_ByteReader {
 public:
  explicit C_ByteReader(std::span<const std::uint8_t> bytes) noexcept : m_bytes(bytes) {}

  [[nodiscard]] bool Ok() const noexcept { return m_bOk; }
  // Bytes not yet read.
  [[nodiscard]] std::size_t Remaining() const noexcept { return m_bytes.size() - m_cbRead; }

  std::uint8_t U8() noexcept { return static_cast<std::uint8_t>(Little(1)); }
  std::uint16_t U16() noexcept { return static_cast<std::uint16_t>(Little(2)); }
  std::uint32_t U32() noexcept { return Little(4); }
  std::int16_t I16() noexcept { return static_cast<std::int16_t>(U16()); }

  // The next cbCount bytes, or an empty view when fewer are left.
  std::span<const std::uint8_t> Bytes(std::size_t cbCount) noexcept {
    if (!Take(cbCount)) return {};
    return m_bytes.subspan(m_cbRead - cbCount, cbCount);
  }
  void Skip(std::size_t cbCount) noexcept { Take(cbCount); }

 private:
  bool Take(std::size_t cbCount) noexcept {
    if (!m_bOk || cbCount > Remaining()) {
      m_bOk = false;
      return false;
    }
    m_cbRead += cbCount;
    return true;
  }
  std::uint32_t Little(std::size_t cbCount) noexcept {
    if (!Take(cbCount)) return 0;
    // Whole sounds are read this way, and Take has checked the bounds.
    const std::uint8_t* const pbyField = m_bytes.data() + (m_cbRead - cbCount);
    std::uint32_t dwValue = 0;
    for (std::size_t i = cbCount; i > 0; --i) dwValue = dwValue << 8 | pbyField[i - 1];
    return dwValue;
  }

  std::span<const std::uint8_t> m_bytes;
  std::size_t m_cbRead = 0;
  bool m_bOk = true;
};

// Appends fields in file order.
class C_ByteWriter {
 public:
  void U8(std::uint8_t byValue) { m_bytes.push_back(byValue); }
  void U16(std::uint16_t wValue) { Little(wValue, 2); }
  void U32(std::uint32_t dwValue) { Little(dwValue, 4); }
  void Bytes(std::span<const std::uint8_t> bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
  }
  // Writes text into a fixed field: cut at cbField characters, or padded with zeros.
  void Text(std::string_view text, std::size_t cbField) {
    for (std::size_t i = 0; i < cbField; ++i) {
      U8(i < text.size() ? static_cast<std::uint8_t>(text[i]) : std::uint8_t{0});
    }
  }
  void Zeros(std::size_t cbCount) { m_bytes.resize(m_bytes.size() + cbCount); }

  [[nodiscard]] const std::vector<std::uint8_t>& Data() const noexcept { return m_bytes; }
  [[nodiscard]] std::vector<std::uint8_t> Take() noexcept { return std::move(m_bytes); }

 private:
  void Little(std::uint32_t dwValue, int nBytes) {
    for (int i = 0; i < nBytes; ++i) U8(static_cast<std::uint8_t>(dwValue >> (8 * i)));
  }
  std::vector<std::uint8_t> m_bytes;
};

}  // namespace vcm
