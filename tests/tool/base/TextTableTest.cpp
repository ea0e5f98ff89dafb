// SPDX-License-Identifier: Apache-2.0
#include "base/TextTable.h"

#include <gtest/gtest.h>

namespace {

using tool::C_TextTable;

TEST(TextTable, Columns_StandBelowEachOther) {
  C_TextTable table("lr");
  table.Add({"a", "1"});
  table.Add({"long", "1,000"});
  EXPECT_EQ(table.Text(2), "  a         1\n  long  1,000\n");
}

TEST(TextTable, ColumnWithoutContent_IsLeftOutWithItsHeading) {
  C_TextTable table("lll", {"first", "second", "third"});
  table.Add({"a", "", "b"});
  EXPECT_EQ(table.Text(0), "first  third\na      b\n");
}

TEST(TextTable, WidthIsThatOfCharacters_NotOfBytes) {
  C_TextTable table("ll");
  table.Add({"\xC3\xA4\xC3\xB6", "x"});
  table.Add({"abc", "y"});
  EXPECT_EQ(table.Text(0), "\xC3\xA4\xC3\xB6   x\nabc  y\n");
}

TEST(TextTable, LinesDoNotEndWithSpaces_WhateverIsMissing) {
  C_TextTable table("ll");
  table.Add({"abc", "y"});
  table.Add({"a", ""});
  EXPECT_EQ(table.Text(0), "abc  y\na\n");
}

TEST(TextTable, Colours_MakeTheHeadingBold) {
  C_TextTable table("l", {"head"});
  table.Add({"a"});
  EXPECT_EQ(table.Text(1, true), " \x1b[1mhead\x1b[0m\n a\n");
  EXPECT_EQ(table.Text(1, false), " head\n a\n");
}

}  // namespace
