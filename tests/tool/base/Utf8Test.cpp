// SPDX-License-Identifier: Apache-2.0
#include "base/Utf8.h"

#include <gtest/gtest.h>

namespace {

using tool::AsUtf8;
using tool::IsUtf8;
using tool::Printable;

TEST(Utf8, CharactersOfEveryLength_AreKnown) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5"));
}

TEST(Utf8, BytesThatAreNone_AreFound) {
  for (const char* const pszText :
       {"\x80", "\xC3", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\xE2\x28\xA1", "ok\xFF"}) {
    EXPECT_FALSE(IsUtf8(pszText));
  }
}

TEST(Utf8, OtherTexts_AreTakenForWindows1252) {
  EXPECT_EQ(AsUtf8("caf\xE9"), "caf\xC3\xA9");
  EXPECT_EQ(AsUtf8("\x80 \x93x\x94"), "\xE2\x82\xAC \xE2\x80\x9Cx\xE2\x80\x9D");
  EXPECT_EQ(AsUtf8("caf\xC3\xA9"), "caf\xC3\xA9");
}

TEST(Utf8, ControlCharacters_DoNothingToTerminals) {
  EXPECT_EQ(Printable("a\tb\nc\rd"), "a\\tb\\nc\\rd");
  EXPECT_EQ(Printable("\x1b[31mred\x7f"), "\\x1b[31mred\\x7f");
  EXPECT_EQ(Printable("\xC2\x9B"
                      "31m"),
            "\\xc2\\x9b31m");
  EXPECT_EQ(Printable("caf\xE9 \xC3\xA9"), "caf\\xe9 \xC3\xA9");
}

}  // namespace
