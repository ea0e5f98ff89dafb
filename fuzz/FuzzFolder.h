// SPDX-License-Identifier: Apache-2.0
//
// A folder of this process's own for the fuzzers. It is in memory where there is a memory file
// system.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
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
