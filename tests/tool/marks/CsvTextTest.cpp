// SPDX-License-Identifier: Apache-2.0
#include "marks/CsvText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "marks/MarkCsv.h"
#include "marks/MarkNotes.h"

namespace {

using testing::ElementsAre;
using tool::C_CsvRow;
using tool::CsvLine;

std::vector<C_CsvRow> ParseCsv(std::string_view text) {
  tool::C_CsvReader reader(text);
  std::vector<C_CsvRow> rows;
  for (C_CsvRow row; reader.Read(row);) rows.push_back(row);
  return rows;
}

TEST(CsvText, FieldsThatNeedIt_AreQuoted) {
  EXPECT_EQ(CsvLine({"a", "b,c", "d\"e", "f\ng", ""}), "a,\"b,c\",\"d\"\"e\",\"f\ng\",\r\n");
}

TEST(CsvText, AnyFields_AreReadBack) {
  const C_CsvRow row = {"",   ",",  "\"",  "\"\"",         "\r\n",
                        "\n", "\r", " x ", "\xC3\xA4\xFF", "a\"b,c\nd"};
  EXPECT_THAT(ParseCsv(CsvLine(row) + CsvLine(row)), ElementsAre(row, row));
  EXPECT_THAT(ParseCsv(CsvLine({""}) + CsvLine({"x"})), ElementsAre(C_CsvRow{"x"}));
}

TEST(CsvText, LineEndsOfAnyKind_AreRead) {
  EXPECT_THAT(ParseCsv("a,b\nc,d\r\ne,f"),
              ElementsAre(C_CsvRow{"a", "b"}, C_CsvRow{"c", "d"}, C_CsvRow{"e", "f"}));
  EXPECT_THAT(ParseCsv("a,b\n\n\nc,\n"), ElementsAre(C_CsvRow{"a", "b"}, C_CsvRow{"c", ""}));
}

TEST(CsvText, OtherSeparatorsAndTheMark_AreUnderstood) {
  EXPECT_THAT(ParseCsv("\xEF\xBB\xBF"
                       "a;b\nc;d,e\n"),
              ElementsAre(C_CsvRow{"a", "b"}, C_CsvRow{"c", "d,e"}));
  EXPECT_THAT(ParseCsv("a\tb\nc\td\n"), ElementsAre(C_CsvRow{"a", "b"}, C_CsvRow{"c", "d"}));
}

TEST(CsvText, Lines_AreCountedAsEditorsCountThem) {
  tool::C_CsvReader reader("\na,\"b\nc\"\r\nd\n\ne\n");
  C_CsvRow row;
  std::vector<std::size_t> lines;
  while (reader.Read(row)) lines.push_back(reader.Line());
  EXPECT_THAT(lines, ElementsAre(2, 4, 6));
}

TEST(CsvText, QuotesInTheMiddle_AreCharacters) {
  EXPECT_THAT(ParseCsv("a\"b,\"c\"d\n"), ElementsAre(C_CsvRow{"a\"b", "cd"}));
}

TEST(CsvText, QuoteThatDoesNotEnd_IsRefused) {
  EXPECT_THROW(ParseCsv("a,\"b\n"), tool::C_BadRow);
  EXPECT_THROW(ParseCsv("\""), tool::C_BadRow);
}

TEST(CsvText, TableWithoutKinds_IsRefused) {
  const auto Read = [](std::string_view text) {
    tool::RowsOfCsv(text)([](const tool::C_Json&, const std::string&) {});
  };
  EXPECT_THROW(Read(""), tool::C_BadRow);
  EXPECT_THROW(Read("start,name\n1,x\n"), tool::C_BadRow);
  EXPECT_THROW(Read("kind,start\ncue,1,2\n"), tool::C_BadRow);
  EXPECT_NO_THROW(Read("kind,start\ncue,1\n"));
}

}  // namespace
