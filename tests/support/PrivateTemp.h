// SPDX-License-Identifier: Apache-2.0
//
// A temporary directory for one test: the process and its children find a fresh, empty folder in
// its place, so that its listing is exact however many tests run at the same time. This needs the
// right to mount. Without it, the listing is the difference from what was there before, and the
// tests that use this must run alone; tests/CMakeLists.txt sees to that.
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
  // The sorted names of the files that are in the temporary directory now and were not before,
  // except those that begin with "voxplay-test-".
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
