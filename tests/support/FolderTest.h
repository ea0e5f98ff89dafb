// SPDX-License-Identifier: Apache-2.0
//
// The base of tests that work on files: each test gets a folder of its own, and must close every
// file that it or the code under test opened.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "TempFolder.h"

class C_FolderTest : public testing::Test {
 protected:
  C_FolderTest() : m_dwOpen(OpenDescriptors()) {}
  ~C_FolderTest() override { EXPECT_EQ(m_dwOpen, OpenDescriptors()) << "open files are left"; }

  [[nodiscard]] std::string Folder() const { return m_folder.Path(); }
  [[nodiscard]] std::string Path(const std::string& strName) const {
    return m_folder.Path(strName);
  }
  // Writes the file and returns its path.
  std::string Write(const std::string& strName, const std::vector<std::uint8_t>& bytes) const {
    return m_folder.Write(strName, bytes);
  }
  [[nodiscard]] std::vector<std::uint8_t> Content(const std::string& strName) const {
    return m_folder.Read(strName);
  }
  // The names in the folder, sorted.
  [[nodiscard]] std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  static std::size_t OpenDescriptors() {
    std::size_t dwCount = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
      ++dwCount;
    }
    return dwCount;
  }

  std::size_t m_dwOpen;
  C_TempFolder m_folder;
};
