// SPDX-License-Identifier: Apache-2.0
//
// Label texts of VEF containers.
#include "file/VefLabels.h"

#include <gtest/gtest.h>

namespace {

using veflabels::EventLabel;
using veflabels::IsLibraryLabel;
using veflabels::ParseEventLabel;
using veflabels::S_EventLabel;

TEST(VefLabels, EventLabels_AreSignedDecimals) {
  EXPECT_EQ(EventLabel({1, 2, 7}), "(65538,7)");
  EXPECT_EQ(EventLabel({0, 0, 0}), "(0,0)");
  EXPECT_EQ(EventLabel({0x7FFF, 0xFFFF, 0x7FFFFFFF}), "(2147483647,2147483647)");
  EXPECT_EQ(EventLabel({0x8000, 0, 0x80000000}), "(-2147483648,-2147483648)");
  EXPECT_EQ(EventLabel({0xFFFF, 0xFFFF, 0xFFFFFFFF}), "(-1,-1)");
}

TEST(VefLabels, EveryEventLabel_ReadsBack) {
  for (const S_EventLabel event : {S_EventLabel{1, 2, 7},
                                   {0, 0, 0},
                                   {0x8000, 1, 0xFFFFFFFF},
                                   {0xFFFF, 0xFFFF, 0x80000000},
                                   {0, 0xFFFF, 0x7FFFFFFF}}) {
    EXPECT_EQ(ParseEventLabel(EventLabel(event).c_str()), event) << EventLabel(event);
    EXPECT_TRUE(IsLibraryLabel(EventLabel(event).c_str())) << EventLabel(event);
  }
}

TEST(VefLabels, TextsThatAreNeverPrinted_AreNoEvents) {
  for (const char* pszText : {"",
                              "(",
                              ")",
                              "()",
                              "(,)",
                              "(1)",
                              "(1,)",
                              "(,1)",
                              "(1,2",
                              "1,2)",
                              "(1,2) ",
                              " (1,2)",
                              "(1, 2)",
                              "( 1,2)",
                              "(+1,2)",
                              "(-0,2)",
                              "(01,2)",
                              "(1,02)",
                              "(1,2,3)",
                              "(1,2)x",
                              "(a,b)",
                              "(2147483648,1)",
                              "(1,-2147483649)",
                              "(99999999999999999999,1)",
                              "(1;2)",
                              "(1.5,2)",
                              "(0x1,2)",
                              "(--1,2)",
                              "u_1_2",
                              "VX_PCM",
                              "verse (1,2)"}) {
    EXPECT_EQ(ParseEventLabel(pszText), std::nullopt) << pszText;
  }
}

TEST(VefLabels, LibraryLabels_AreOnlyThoseFourForms) {
  for (const char* pszText :
       {"(1,2)", "(-1,-1)", "u_0_0", "u_1_2", "u_65535_65535", "u_-1_3", "VX_Silence", "VX_PCM"}) {
    EXPECT_TRUE(IsLibraryLabel(pszText)) << pszText;
  }
  for (const char* pszText :
       {"",           "u",           "u_",      "u__",    "u_1",    "u_1_",  "u__1",
        "u_1_2_3",    "u_1_2 ",      "U_1_2",   "xu_1_2", "u_01_2", "u_1_x", "e_196615",
        "VX_silence", "VX_Silence ", "VX_PCM1", "vx_pcm", "Verse",  "(1,2",  "duo_1_2"}) {
    EXPECT_FALSE(IsLibraryLabel(pszText)) << pszText;
  }
}

}  // namespace
