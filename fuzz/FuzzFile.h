// SPDX-License-Identifier: Apache-2.0
//
// A file of given bytes that lives in memory, for the fuzzers: the code under test opens it by name
// like any other file, and no disk is touched.
//
// There are two kinds. That of FuzzFile.cpp is a file to the system as well, so every library can
// open it. That of FuzzFileOfOurs.cpp is known to this program only. It saves the system's calls,
// which take half of the time of a small input, but is seen only by code that opens its files with
// fopen and that the fuzzer is linked with. Neither can be replaced by another file, so both are
// written in place; fuzz/sp_header_files.cpp works on files that can.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class C_FuzzFile {
 public:
  explicit C_FuzzFile(std::span<const std::uint8_t> bytes = {});
  ~C_FuzzFile();
  C_FuzzFile(const C_FuzzFile&) = delete;
  C_FuzzFile& operator=(const C_FuzzFile&) = delete;

  // Opens with any mode, as often as wanted, each time at position 0. The name cannot be removed or
  // renamed, so operations that replace their file fail on it.
  [[nodiscard]] const char* Path() const noexcept;

  // The bytes that the file holds now.
  [[nodiscard]] std::vector<std::uint8_t> Bytes() const;

 private:
  class C_Memory;
  std::unique_ptr<C_Memory> m_memory;
};
