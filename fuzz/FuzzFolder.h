// SPDX-License-Identifier: Apache-2.0
//
// A folder of this process's own for the fuzzers, and a file in it that holds the present input.
// Both are in memory where there is a memory file system. A short path is looked up in a third of
// the time that the name of a file without a folder (FuzzFile.h) takes, which counts where one
// input is opened twenty times.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>

#include "Require.h"

// Removed when the process ends, but not when it is killed.
class C_FuzzFolder {
 public:
  C_FuzzFolder() {
    const bool bMemory = access("/dev/shm", W_OK) == 0;
    m_strPath = bMemory ? "/dev/shm/voxplay-fuzz-XXXXXX" : "/tmp/voxplay-fuzz-XXXXXX";
    Require(mkdtemp(m_strPath.data()) != nullptr);
  }
  ~C_FuzzFolder() {
    std::error_code error;
    std::filesystem::remove_all(m_strPath, error);
  }
  C_FuzzFolder(const C_FuzzFolder&) = delete;
  C_FuzzFolder& operator=(const C_FuzzFolder&) = delete;

  [[nodiscard]] std::string Path(const std::string& strName) const {
    return m_strPath + "/" + strName;
  }
  [[nodiscard]] const std::string& Path() const { return m_strPath; }

 private:
  std::string m_strPath;
};

// The same file for each input; the code under test only reads it.
class C_FuzzInputFile {
 public:
  explicit C_FuzzInputFile(std::span<const std::uint8_t> bytes) {
    Require(ftruncate(File().nFile, static_cast<off_t>(bytes.size())) == 0);
    Require(pwrite(File().nFile, bytes.data(), bytes.size(), 0) ==
            static_cast<ssize_t>(bytes.size()));
  }
  [[nodiscard]] static const char* Path() { return File().strPath.c_str(); }

 private:
  struct S_File {
    S_File()
        : strPath(folder.Path("input")),
          nFile(open(strPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {}
    ~S_File() { static_cast<void>(close(nFile)); }
    S_File(const S_File&) = delete;
    S_File& operator=(const S_File&) = delete;

    C_FuzzFolder folder;
    std::string strPath;
    int nFile;
  };
  static const S_File& File() {
    static const S_File file;
    return file;
  }
};
