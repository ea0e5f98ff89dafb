// SPDX-License-Identifier: Apache-2.0
//
// Temporary files. Their names use the directory that the C library's temporary-name function uses,
// and the same form unless the caller asks for another prefix. TMPDIR and every other environment
// variable are ignored on purpose, so that a file is found in the same place however the program
// was started.
#pragma once

#include <string>
#include <utility>

#include "StdioFile.h"

namespace vcm {

// The prefix of the C library's own temporary names.
inline constexpr const char* kTempPrefix = "file";

// Returns a new temporary path and creates nothing. The file name is pszPrefix, six characters and
// pszSuffix (".wav", "" ...). Empty when no unused name was found.
[[nodiscard]] std::string TempName(const char* pszSuffix, const char* pszPrefix = kTempPrefix);

// Creates strPath exclusively for reading and writing, with mode 0600 and without following a link.
// Empty when the file exists or cannot be created.
[[nodiscard]] C_FilePtr CreateExclusive(const std::string& strPath);
// The same with another mode, of which the process's mask takes its bits.
[[nodiscard]] C_FilePtr CreateExclusive(const std::string& strPath, unsigned int dwMode);

// Removes the file at a path on destruction, unless Keep() was called. Owns the file, but no stream
// of it.
class C_RemovedAtEnd {
 public:
  C_RemovedAtEnd() = default;
  explicit C_RemovedAtEnd(std::string strPath) : m_strPath(std::move(strPath)) {}
  ~C_RemovedAtEnd();
  C_RemovedAtEnd(C_RemovedAtEnd&& other) noexcept : m_strPath(other.Keep()) {}
  C_RemovedAtEnd& operator=(C_RemovedAtEnd&&) = delete;

  // Empty when there is nothing to remove.
  [[nodiscard]] const std::string& Path() const noexcept { return m_strPath; }
  // Leaves the file where it is and returns its path.
  std::string Keep() noexcept { return std::exchange(m_strPath, {}); }

 private:
  std::string m_strPath;
};

// A temporary file that exists from construction to destruction.
class C_TempFile {
 public:
  explicit C_TempFile(const char* pszSuffix = "", const char* pszPrefix = kTempPrefix);
  ~C_TempFile();
  C_TempFile(const C_TempFile&) = delete;
  C_TempFile& operator=(const C_TempFile&) = delete;

  // The open stream ("w+b"); null when the file could not be created.
  [[nodiscard]] std::FILE* Stream() const noexcept { return m_file.get(); }
  [[nodiscard]] const std::string& Path() const noexcept { return m_strPath; }
  // Hands over the stream; the file is still removed on destruction.
  [[nodiscard]] C_FilePtr TakeStream() noexcept { return std::move(m_file); }

 private:
  std::string m_strPath;
  C_FilePtr m_file;
};

}  // namespace vcm
