// SPDX-License-Identifier: Apache-2.0
#include "marks/QuotedText.h"

#include <gtest/gtest.h>

namespace {

bool IsBracketed(std::string_view text) { return text.starts_with('['); }

std::string Line(std::string_view text) { return tool::OnOneLine(text, &IsBracketed); }
std::string Text(std::string_view line) { return tool::FromOneLine(line, &IsBracketed); }

TEST(QuotedText, OrdinaryTexts_StandAsTheyAre) {
  for (const char* const pszText :
       {"plain", "\"quoted\"", "a \"b\" c", "C:\\new", "\\n", "\"", " "}) {
    EXPECT_EQ(Line(pszText), pszText);
    EXPECT_EQ(Text(pszText), pszText);
  }
}

TEST(QuotedText, OtherTexts_StandBetweenQuotes) {
  EXPECT_EQ(Line(""), "\"\"");
  EXPECT_EQ(Line("a\tb\n"), "\"a\\tb\\n\"");
  EXPECT_EQ(Line("[x]"), "\"[x]\"");
  EXPECT_EQ(Line("\x1b\"\\"), "\"\\x1b\\\"\\\\\"");
}

TEST(QuotedText, EveryText_ComesBack) {
  for (std::string strText : {"", "\n", "[x]", "\"", "\"\"", "a\\\"\n", "\x01\x7f", "caf\xE9\n"}) {
    // Each line is a text itself.
    for (int n = 0; n < 5; ++n) {
      const std::string strLine = Line(strText);
      EXPECT_EQ(Text(strLine), strText);
      EXPECT_EQ(strLine.find_first_of("\n\t\r"), std::string::npos);
      strText = strLine;
    }
  }
}

TEST(QuotedText, LinesThatArePartlyOfThisForm_MeanThemselves) {
  for (const char* const pszLine :
       {"\"a\\q\"", "\"a\"b\"", "\"a\\", "\"\\x1\"", "\"\\xzz\"", "\"\\\""}) {
    EXPECT_EQ(Text(pszLine), pszLine);
  }
}

}  // namespace
