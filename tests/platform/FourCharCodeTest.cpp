// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "FourCharCode.h"

namespace {

std::string TextOf(UInt32 dwCode) {
  std::array<char, kFourCharCodeRoom> text{};
  EXPECT_EQ(FourCharCodeText(dwCode, text.data()), text.data());
  return text.data();
}

TEST(FourCharCodeTest, CharactersStandInQuotes_EverythingElseInHex) {
  struct S_Row {
    UInt32 dwCode;
    const char* pszText;
  };
  const std::vector<S_Row> rows = {
      {0x6C70636D, "'lpcm'"},     {0x2E6D7033, "'.mp3'"},     {0x64656620, "'def '"},
      {0x20202020, "'    '"},     {0x7E7E7E7E, "'~~~~'"},     {0x27276127, "'''a''"},
      {0x615C5C5C, "'a\\\\\\'"},  {0x25642573, "'%d%s'"},     {0x00000001, "0x00000001"},
      {0x00000000, "0x00000000"}, {0xFFFFFFFF, "0xFFFFFFFF"}, {0x5C616263, "0x5C616263"},
      {0x00616263, "0x00616263"}, {0x7F414243, "0x7F414243"}, {0x1F616263, "0x1F616263"},
      {0xE4616263, "0xE4616263"}, {0xFFFFFFCE, "0xFFFFFFCE"}};
  for (const S_Row& row : rows) EXPECT_EQ(TextOf(row.dwCode), row.pszText);
}

TEST(FourCharCodeTest, TheFirstByteDecides_TheOthersAreWrittenRaw) {
  EXPECT_EQ(TextOf(0x61010203), "'a\x01\x02\x03'");
  EXPECT_EQ(TextOf(0x617F80FF), "'a\x7F\x80\xFF'");
  // A zero byte among them is written as well, and a C string ends there.
  std::array<char, kFourCharCodeRoom> text{};
  FourCharCodeText(0x61006200, text.data());
  EXPECT_EQ(std::string(text.data(), 7), std::string("'a\0b\0'\0", 7));
  EXPECT_EQ(TextOf(0x61000000), "'a");
}

TEST(FourCharCodeTest, WhatCanBePrinted_IsAsciiWithoutTheBackslash) {
  for (UInt32 dwFirst = 0; dwFirst <= 0xFF; ++dwFirst) {
    const bool bPrintable = dwFirst >= 0x20 && dwFirst <= 0x7E && dwFirst != 0x5C;
    std::array<char, 16> expected{};
    if (bPrintable) {
      std::snprintf(expected.data(), expected.size(), "'%cabc'", static_cast<int>(dwFirst));
    } else {
      std::snprintf(expected.data(), expected.size(), "0x%02X616263", dwFirst);
    }
    EXPECT_EQ(TextOf((dwFirst << 24) | 0x616263), expected.data()) << dwFirst;
  }
}

TEST(FourCharCodeTest, Text_IsNeverWrittenBeyondTheRoom) {
  for (const UInt32 dwCode : {0x6C70636DU, 1U, 0xFFFFFFFFU}) {
    std::array<char, kFourCharCodeRoom + 8> buffer{};
    buffer.fill('#');
    FourCharCodeText(dwCode, buffer.data());
    EXPECT_EQ(std::string(buffer.data() + kFourCharCodeRoom, 8), "########");
  }
}

}  // namespace
