// SPDX-License-Identifier: Apache-2.0
#include "VCM.h"

#include <gtest/gtest.h>

#include <string>

#include "TempFolder.h"
#include "VcmAssert.h"

TEST(VCM, Tfopen_OpensAsTheCLibraryDoes) {
  const C_TempFolder folder;
  const std::string strPath = folder.Path("file");
  EXPECT_EQ(VCM_tfopen(strPath.c_str(), "rb"), nullptr);
  std::FILE* pFile = VCM_tfopen(strPath.c_str(), "wb");
  ASSERT_NE(pFile, nullptr);
  EXPECT_EQ(std::fputs("abc", pFile), 1);
  EXPECT_EQ(std::fclose(pFile), 0);
  EXPECT_EQ(folder.Read("file").size(), 3u);
}

TEST(VCM, Strncpy_DoesNotTerminateACutText) {
  for (const auto pfnCopy : {VCM_strncpy, VCM_tcsncpy}) {
    std::string strTarget = "########";
    EXPECT_EQ(pfnCopy(strTarget.data(), "abcdef", 4), strTarget.data());
    EXPECT_EQ(strTarget, "abcd####");
  }
}

TEST(VCM, Strncpy_PadsAShortTextWithNuls) {
  for (const auto pfnCopy : {VCM_strncpy, VCM_tcsncpy}) {
    std::string strTarget = "########";
    EXPECT_EQ(pfnCopy(strTarget.data(), "ab", 5), strTarget.data());
    EXPECT_EQ(strTarget, std::string("ab\0\0\0###", 8));
    pfnCopy(strTarget.data(), "zz", 0);
    EXPECT_EQ(strTarget[0], 'a');
  }
}

TEST(VCM, Stprintf_IgnoresTheBufferSize) {
  char szBuffer[64] = {};
  EXPECT_EQ(VCM_stprintf(szBuffer, 2, "%s", "abcdef"), 6);
  EXPECT_STREQ(szBuffer, "abcdef");
  EXPECT_EQ(VCM_stprintf(szBuffer, 0, "u_%d_%d", 3, 7), 5);
  EXPECT_STREQ(szBuffer, "u_3_7");
}

TEST(VcmAssert, FailedAssertion_SaysFunctionSourceLineAndTextAndStops) {
  EXPECT_DEATH(VCM_ASSERT(1 + 1 == 3, "Compare", "Folder/Source", 96, "1 + 1 == 3"),
               "^Compare: Folder/Source:96: assertion failed: 1 \\+ 1 == 3\n$");
}

TEST(VcmAssert, AssertionThatHolds_DoesNothingAndEvaluatesOnce) {
  int nEvaluated = 0;
  VCM_ASSERT(++nEvaluated == 1, "f", "s", 1, "t");
  EXPECT_EQ(nEvaluated, 1);
}
