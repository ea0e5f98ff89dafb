// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/Descriptor.h"

namespace tool {

// The bytes of an open file with a position of our own, so that two readers of the same descriptor
// do not disturb each other.
class C_FileBytes {
 public:
  explicit C_FileBytes(C_Descriptor file);

  // From now on, these bytes of the file are all of it. The position is at the first one.
  void Confine(std::uint64_t qwAt, std::uint64_t qwBytes);
  // From now on, these few bytes seem to stand there. They replace those of an earlier call.
  void Cover(std::uint64_t qwAt, std::vector<std::uint8_t> bytes);
  // The same file from its beginning, with all of its own bytes.
  [[nodiscard]] C_FileBytes Again() const;

  // -1 where they cannot be read.
  std::int64_t Read(void* pBytes, std::size_t cbBytes);
  void Seek(std::uint64_t qwPosition) noexcept { m_qwPosition = qwPosition; }
  [[nodiscard]] std::uint64_t Position() const noexcept { return m_qwPosition; }
  [[nodiscard]] std::int64_t Length() const noexcept { return m_nLength; }
  // What a failed read was about; 0 when none has failed.
  [[nodiscard]] int Error() const noexcept { return m_nError; }

 private:
  [[nodiscard]] std::int64_t ReadAsItIs(std::byte* pBytes, std::size_t cbBytes);

  C_Descriptor m_file;
  std::int64_t m_nLength;
  std::uint64_t m_qwBegin = 0;          // in the file
  std::uint64_t m_qwMost = UINT64_MAX;  // bytes from there on
  std::uint64_t m_qwCovered = 0;
  std::vector<std::uint8_t> m_cover;
  std::uint64_t m_qwPosition = 0;
  int m_nError = 0;
};

}  // namespace tool
