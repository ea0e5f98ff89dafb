// SPDX-License-Identifier: Apache-2.0
//
// A file that is damaged and repaired many times, in place and in memory.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

class C_SweepFile {
 public:
  explicit C_SweepFile(std::vector<std::uint8_t> bytes)
      : m_bytes(std::move(bytes)), m_nFile(memfd_create("sweep", MFD_CLOEXEC)) {
    if (m_nFile < 0) std::abort();
    Put(0, m_bytes);
    m_strPath = "/proc/self/fd/" + std::to_string(m_nFile);
  }
  ~C_SweepFile() { static_cast<void>(close(m_nFile)); }
  C_SweepFile(const C_SweepFile&) = delete;
  C_SweepFile& operator=(const C_SweepFile&) = delete;

  [[nodiscard]] const std::string& Path() const { return m_strPath; }
  [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return m_bytes; }

  void Put(std::size_t nAt, std::span<const std::uint8_t> bytes) const {
    if (pwrite(m_nFile, bytes.data(), bytes.size(), static_cast<off_t>(nAt)) !=
        static_cast<ssize_t>(bytes.size())) {
      std::abort();
    }
  }
  // Writes the value as cbValue bytes, little-endian.
  void PutNumber(std::size_t nAt, std::size_t cbValue, std::uint32_t dwValue) const {
    std::uint8_t bytes[4] = {};
    for (std::size_t i = 0; i < cbValue; ++i) {
      bytes[i] = static_cast<std::uint8_t>(dwValue >> (8 * i));
    }
    Put(nAt, {bytes, cbValue});
  }
  // Restores cbCount bytes from nAt on to what they were at first.
  void Repair(std::size_t nAt, std::size_t cbCount) const {
    Put(nAt, std::span(m_bytes).subspan(nAt, cbCount));
  }
  void CutTo(std::size_t cbLength) const {
    if (ftruncate(m_nFile, static_cast<off_t>(cbLength)) != 0) std::abort();
  }

 private:
  std::vector<std::uint8_t> m_bytes;
  int m_nFile;
  std::string m_strPath;
};
