// SPDX-License-Identifier: Apache-2.0
//
// The temporary directory for one test alone: what the process and its children find there is a
// fresh empty folder, so that its listing is exact however many tests run beside. Needs the right
// to mount; without it the listing is the difference to what was there before, and the tests that
// use this share the resource lock "temp_directory".
//
// Paths into the temporary directory that were valid before are hidden while the object lives.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp
#include <sys/mount.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

class C_PrivateTemp {
 public:
  C_PrivateTemp() {
    std::string strTemplate = std::filesystem::current_path().string() + "/private-temp-XXXXXX";
    const char* pszMade = mkdtemp(strTemplate.data());
    EXPECT_NE(pszMade, nullptr);
    m_strFolder = strTemplate;
    m_bPrivate = unshare(CLONE_NEWNS) == 0 &&
                 mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                 mount(m_strFolder.c_str(), P_tmpdir, nullptr, MS_BIND, nullptr) == 0;
    m_before = List();
  }
  ~C_PrivateTemp() {
    if (m_bPrivate) umount2(P_tmpdir, MNT_DETACH);
    std::error_code error;
    std::filesystem::remove_all(m_strFolder, error);
  }
  C_PrivateTemp(const C_PrivateTemp&) = delete;
  C_PrivateTemp& operator=(const C_PrivateTemp&) = delete;

  // False where mounting is refused.
  [[nodiscard]] bool IsPrivate() const { return m_bPrivate; }
  // The names of the library's temporary files that are there now and were not before, sorted.
  [[nodiscard]] std::vector<std::string> NewFiles() const {
    std::vector<std::string> fresh;
    const std::vector<std::string> now = List();
    std::set_difference(now.begin(), now.end(), m_before.begin(), m_before.end(),
                        std::back_inserter(fresh));
    return fresh;
  }

 private:
  [[nodiscard]] static std::vector<std::string> List() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(P_tmpdir)) {
      const std::string strName = entry.path().filename().string();
      if (!strName.starts_with("voxplay-test-")) names.push_back(strName);
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  std::string m_strFolder;
  bool m_bPrivate = false;
  std::vector<std::string> m_before;
};
