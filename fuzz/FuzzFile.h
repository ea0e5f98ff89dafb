// SPDX-License-Identifier: Apache-2.0
//
// A file of given bytes that lives in memory, for the fuzzers: the code under test opens it by name
// like any other file, and no disk is touched.
#pragma once

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

class C_FuzzFile {
 public:
  explicit C_FuzzFile(std::span<const std::uint8_t> bytes = {})
      : m_nFile(memfd_create("fuzz", MFD_CLOEXEC)),
        m_strPath("/proc/self/fd/" + std::to_string(m_nFile)) {
    // A fuzzer that cannot hand over its input would report success without testing anything.
    if (m_nFile < 0 || !WriteAll(bytes)) std::abort();
  }
  ~C_FuzzFile() { static_cast<void>(close(m_nFile)); }
  C_FuzzFile(const C_FuzzFile&) = delete;
  C_FuzzFile& operator=(const C_FuzzFile&) = delete;

  // Opens with any mode, as often as wanted, each time at position 0. The name cannot be removed or
  // renamed, so operations that replace their file fail on it.
  [[nodiscard]] const char* Path() const noexcept { return m_strPath.c_str(); }

  // The bytes that the file holds now.
  [[nodiscard]] std::vector<std::uint8_t> Bytes() const {
    struct stat status {};
    if (fstat(m_nFile, &status) != 0) std::abort();
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
    if (pread(m_nFile, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
      std::abort();
    }
    return bytes;
  }

 private:
  [[nodiscard]] bool WriteAll(std::span<const std::uint8_t> bytes) const {
    while (!bytes.empty()) {
      const ssize_t nWritten = write(m_nFile, bytes.data(), bytes.size());
      if (nWritten <= 0) return false;
      bytes = bytes.subspan(static_cast<std::size_t>(nWritten));
    }
    return true;
  }

  int m_nFile;
  std::string m_strPath;
};
