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
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

class C_FuzzFile {
 public:
  explicit C_FuzzFile(std::span<const std::uint8_t> bytes = {}) : m_memory(Take()) {
    // A fuzzer that cannot hand over its input would report success without testing anything.
    if (!WriteAll(bytes)) std::abort();
  }
  ~C_FuzzFile() { Unused().push_back(std::move(m_memory)); }
  C_FuzzFile(const C_FuzzFile&) = delete;
  C_FuzzFile& operator=(const C_FuzzFile&) = delete;

  // Opens with any mode, as often as wanted, each time at position 0. The name cannot be removed or
  // renamed, so operations that replace their file fail on it.
  [[nodiscard]] const char* Path() const noexcept { return m_memory->strPath.c_str(); }

  // The bytes that the file holds now.
  [[nodiscard]] std::vector<std::uint8_t> Bytes() const {
    struct stat status {};
    if (fstat(m_memory->nFile, &status) != 0) std::abort();
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
    if (pread(m_memory->nFile, bytes.data(), bytes.size(), 0) !=
        static_cast<ssize_t>(bytes.size())) {
      std::abort();
    }
    return bytes;
  }

 private:
  struct S_Memory {
    S_Memory()
        : nFile(memfd_create("fuzz", MFD_CLOEXEC)),
          strPath("/proc/self/fd/" + std::to_string(nFile)) {}
    ~S_Memory() { static_cast<void>(close(nFile)); }
    S_Memory(const S_Memory&) = delete;
    S_Memory& operator=(const S_Memory&) = delete;

    int nFile;
    std::string strPath;
  };
  using MemoryPtr = std::unique_ptr<S_Memory>;

  // Making a file costs more than most inputs do, so files are used again.
  static std::vector<MemoryPtr>& Unused() {
    static std::vector<MemoryPtr> unused;
    return unused;
  }
  static MemoryPtr Take() {
    if (Unused().empty()) return std::make_unique<S_Memory>();
    MemoryPtr memory = std::move(Unused().back());
    Unused().pop_back();
    return memory;
  }

  [[nodiscard]] bool WriteAll(std::span<const std::uint8_t> bytes) const {
    if (m_memory->nFile < 0 || ftruncate(m_memory->nFile, static_cast<off_t>(bytes.size())) != 0) {
      return false;
    }
    for (off_t nPosition = 0; !bytes.empty();) {
      const ssize_t nWritten = pwrite(m_memory->nFile, bytes.data(), bytes.size(), nPosition);
      if (nWritten <= 0) return false;
      nPosition += nWritten;
      bytes = bytes.subspan(static_cast<std::size_t>(nWritten));
    }
    return true;
  }

  MemoryPtr m_memory;
};
