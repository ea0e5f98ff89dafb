// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

namespace counted {

// A file that is deleted at the end.
class C_ScratchFile {
 public:
  C_ScratchFile() {
    const int nFile = mkstemp(m_strPath.data());
    if (nFile < 0) throw std::runtime_error("no temporary file");
    close(nFile);
  }
  explicit C_ScratchFile(std::span<const std::uint8_t> bytes) : C_ScratchFile() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pFile(
        std::fopen(Path(), "wb"), [](std::FILE* p) { return std::fclose(p); });
    if (!pFile || std::fwrite(bytes.data(), 1, bytes.size(), pFile.get()) != bytes.size()) {
      throw std::runtime_error("cannot write " + m_strPath);
    }
  }
  ~C_ScratchFile() { std::remove(Path()); }
  C_ScratchFile(const C_ScratchFile&) = delete;
  C_ScratchFile& operator=(const C_ScratchFile&) = delete;

  [[nodiscard]] const char* Path() const { return m_strPath.c_str(); }

 private:
  std::string m_strPath = "/tmp/voxplay-counted-XXXXXX";
};

}  // namespace counted
