// SPDX-License-Identifier: Apache-2.0
//
// Temporary files. Names have the directory that the C library's temporary-name function gives, and
// its form unless another beginning is asked for; TMPDIR and every other environment variable are
// ignored on purpose, so that a file is found in the same place however the program was started.
#pragma once

#include <string>
#include <utility>

#include "StdioFile.h"

namespace vcm {

// What the C library's own temporary names begin with.
inline constexpr const char* kTempPrefix = "file";

// A fresh temporary name (nothing is created): pszPrefix, six characters, and pszSuffix (".wav", ""
// ...). Empty when no name is left.
[[nodiscard]] std::string TempName(const char* pszSuffix, const char* pszPrefix = kTempPrefix);

// Creates strPath for writing and reading, exclusively, mode 0600, without following a link. Empty
// when it exists or cannot be made.
[[nodiscard]] C_FilePtr CreateExclusive(const std::string& strPath);

// Removes the file of a path at destruction, unless it is kept. Owns the file, not a stream of it.
class C_RemovedAtEnd {
 public:
  C_RemovedAtEnd() = default;
  explicit C_RemovedAtEnd(std::string strPath) : m_strPath(std::move(strPath)) {}
  ~C_RemovedAtEnd();
  C_RemovedAtEnd(C_RemovedAtEnd&& other) noexcept : m_strPath(other.Keep()) {}
  C_RemovedAtEnd& operator=(C_RemovedAtEnd&&) = delete;

  // Empty when there is nothing to remove.
  [[nodiscard]] const std::string& Path() const noexcept { return m_strPath; }
  // Leaves the file where it is, and gives its path.
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
  // Gives up the stream; the file is still removed at destruction.
  [[nodiscard]] C_FilePtr TakeStream() noexcept { return std::move(m_file); }

 private:
  std::string m_strPath;
  C_FilePtr m_file;
};

}  // namespace vcm
