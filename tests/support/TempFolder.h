// SPDX-License-Identifier: Apache-2.0
//
// A folder of its own for one test. It is removed with everything in it when the test ends.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "FileBytes.h"

class C_TempFolder {
 public:
  // For tests that write so much that a disk would slow them down.
  static constexpr const char* kInMemory = "/dev/shm";

  explicit C_TempFolder(const std::string& strParent = "/tmp") {
    std::string strTemplate = strParent + "/voxplay-test-XXXXXX";
    const char* pszMade = mkdtemp(strTemplate.data());
    EXPECT_NE(pszMade, nullptr);
    if (pszMade != nullptr) m_strPath = pszMade;
  }
  ~C_TempFolder() {
    std::error_code error;
    if (!m_strPath.empty()) std::filesystem::remove_all(m_strPath, error);
    EXPECT_FALSE(error) << error.message();
  }
  C_TempFolder(const C_TempFolder&) = delete;
  C_TempFolder& operator=(const C_TempFolder&) = delete;

  [[nodiscard]] const std::string& Path() const { return m_strPath; }
  // The path of a name in the folder; nothing is created.
  [[nodiscard]] std::string Path(const std::string& strName) const {
    return m_strPath + "/" + strName;
  }
  // Creates or overwrites a file in the folder. Returns its path.
  std::string Write(const std::string& strName, const std::vector<std::uint8_t>& bytes) const {
    std::ofstream file(Path(strName), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.flush().good());
    return Path(strName);
  }
  // The content of a file in the folder; empty when the file does not exist.
  [[nodiscard]] std::vector<std::uint8_t> Read(const std::string& strName) const {
    return FileBytes(Path(strName));
  }
  [[nodiscard]] bool Has(const std::string& strName) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Path(strName)));
  }
  // For tests that leave nothing behind when they end.
  [[nodiscard]] bool IsEmpty() const { return std::filesystem::is_empty(m_strPath); }

 private:
  std::string m_strPath;
};
