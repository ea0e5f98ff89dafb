// SPDX-License-Identifier: Apache-2.0
//
// A private temporary file without a name: nobody else sees it, and it is gone with its object,
// even when the program is killed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "StdioFile.h"

namespace api {

class I_ByteTarget;

// All functions throw C_Failure (VOXPLAY_CANNOT_WRITE) when the system refuses something.
class C_SpoolFile {
 public:
  C_SpoolFile();

  // Appends.
  void Append(const void* pBytes, std::size_t cbCount);
  // Fills all of bytes with what was appended from qwPosition on.
  void Read(std::uint64_t qwPosition, void* pBytes, std::size_t cbCount);
  // Writes over what was appended.
  void Overwrite(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes);
  [[nodiscard]] std::uint64_t Length() const noexcept { return m_qwLength; }
  // Appends all of it to a target.
  void CopyTo(I_ByteTarget& target);

 private:
  void MoveTo(std::uint64_t qwPosition);

  vcm::C_FilePtr m_file;
  std::uint64_t m_qwLength = 0;
  std::uint64_t m_qwPosition = 0;  // of the stream
  bool m_bReading = false;
};

}  // namespace api
