// SPDX-License-Identifier: Apache-2.0
#include "FuzzFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <string>

#include "Require.h"

class C_FuzzFile::C_Memory {
 public:
  explicit C_Memory(std::span<const std::uint8_t> bytes)
      : m_nFile(memfd_create("fuzz", MFD_CLOEXEC)),
        m_strPath("/proc/self/fd/" + std::to_string(m_nFile)) {
    // A fuzzer that cannot hand over its input would report success without testing anything.
    Require(m_nFile >= 0);
    for (off_t nPosition = 0; !bytes.empty();) {
      const ssize_t nWritten = pwrite(m_nFile, bytes.data(), bytes.size(), nPosition);
      Require(nWritten > 0);
      nPosition += nWritten;
      bytes = bytes.subspan(static_cast<std::size_t>(nWritten));
    }
  }
  ~C_Memory() { static_cast<void>(close(m_nFile)); }
  C_Memory(const C_Memory&) = delete;
  C_Memory& operator=(const C_Memory&) = delete;

  [[nodiscard]] const char* Path() const noexcept { return m_strPath.c_str(); }
  [[nodiscard]] std::vector<std::uint8_t> Bytes() const {
    struct stat status {};
    Require(fstat(m_nFile, &status) == 0);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
    Require(pread(m_nFile, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    return bytes;
  }

 private:
  int m_nFile;
  std::string m_strPath;
};

C_FuzzFile::C_FuzzFile(std::span<const std::uint8_t> bytes)
    : m_memory(std::make_unique<C_Memory>(bytes)) {}
C_FuzzFile::~C_FuzzFile() = default;

const char* C_FuzzFile::Path() const noexcept { return m_memory->Path(); }
std::vector<std::uint8_t> C_FuzzFile::Bytes() const { return m_memory->Bytes(); }
