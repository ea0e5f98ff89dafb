// SPDX-License-Identifier: Apache-2.0
//
// Files by descriptor: standard input, and what is copied from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tool {

// Owns a descriptor, unless it is that of a standard stream.
class C_Descriptor {
 public:
  explicit C_Descriptor(int nFile) noexcept : m_nFile(nFile) {}
  C_Descriptor(C_Descriptor&& other) noexcept;
  C_Descriptor& operator=(C_Descriptor&& other) noexcept;
  ~C_Descriptor();

  [[nodiscard]] int Get() const noexcept { return m_nFile; }

 private:
  int m_nFile;
};

// Reads up to bytes.size() bytes from where the file is; 0 only at its end. Throws C_Failure, which
// strName begins, and C_Interrupted.
std::size_t ReadSome(int nFile, std::span<std::byte> bytes, const std::string& strName);
// Writes all bytes. Throws in the same way, and C_OutputClosed when nobody reads them any more.
void WriteAll(int nFile, std::span<const std::byte> bytes, const std::string& strName);

// A file without a name, in $TMPDIR or /tmp, that only its owner can read. Throws C_Failure.
C_Descriptor MakePrivateFile();

}  // namespace tool
