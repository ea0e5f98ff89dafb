// SPDX-License-Identifier: Apache-2.0
//
// A player on a library and a toolbox that only record what they are asked.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "CAXException.h"
#include "FakeToolbox.h"
#include "I_Voxplay.h"
#include "PrivateTemp.h"
#include "TempFolder.h"
#include "fakelib/FakeLibrary.h"

inline std::vector<std::pair<int, unsigned int>> g_notified;
inline int OnState(int nState, unsigned int dwUserData) {
  g_notified.emplace_back(nState, dwUserData);
  return 12345;
}

class Voxplay : public ::testing::Test {
 protected:
  Voxplay() {
    m_toolbox.Reset();
    m_library.Reset();
    m_library.onConvert = [](const char* pszPath) { std::ofstream(pszPath) << "RIFF"; };
    g_notified.clear();
    EXPECT_EQ(CreateVoxplay(&m_pPlayer), 0);
  }
  ~Voxplay() override {
    m_toolbox.Reset();
    m_library.Reset();
    if (m_pPlayer != nullptr) m_pPlayer->Release();
  }

  // Opens an existing file with this name. What was printed goes to m_strOutput.
  int Open(const std::string& strName) {
    const std::string strPath = m_folder.Write(strName, {1});
    testing::internal::CaptureStdout();
    const int nResult = m_pPlayer->Open(strPath.c_str());
    m_strOutput = testing::internal::GetCapturedStdout();
    return nResult;
  }
  void OpenWithCallback() {
    ASSERT_EQ(Open("x.wav"), 0);
    ASSERT_TRUE(m_pPlayer->SetNotify(OnState, 77));
    m_toolbox.ClearLog();
  }
  int PositionMs() {
    int nPosition = -1;
    EXPECT_TRUE(m_pPlayer->GetPositionMs(&nPosition));
    return nPosition;
  }
  int Position() {
    int nPosition = -1;
    EXPECT_TRUE(m_pPlayer->GetPosition(&nPosition));
    return nPosition;
  }
  void Release() {
    m_pPlayer->Release();
    m_pPlayer = nullptr;
  }
  template <typename Work>
  static std::string Thrown(Work work) {
    try {
      work();
    } catch (const CAXException& failure) {
      return failure.Operation();
    }
    return "nothing";
  }

  C_FakeToolbox& m_toolbox = C_FakeToolbox::Get();
  C_FakeLibrary& m_library = C_FakeLibrary::Get();
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  I_Voxplay* m_pPlayer = nullptr;
  std::string m_strOutput;
};
