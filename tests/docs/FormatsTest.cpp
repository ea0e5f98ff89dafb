// SPDX-License-Identifier: Apache-2.0
//
// docs/FORMATS.md against the library's writers, and its statements about the dumps against its
// readers.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "FormatDumps.h"

namespace {

std::string Document() {
  std::ifstream file(VOXPLAY_FORMATS, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Formats, Dumps_AreWhatTheWritersWrite) {
  const std::string strDocument = Document();
  ASSERT_NE(strDocument, "");
  EXPECT_EQ(formatdumps::WithDumps(strDocument, formatdumps::AllDumps()), strDocument);
}

TEST(Formats, EveryDump_IsInTheDocument) {
  const std::string strDocument = Document();
  for (const auto& dump : formatdumps::AllDumps()) {
    const std::string strShown =
        formatdumps::MarkOf(dump) + "```\n" + formatdumps::HexLines(dump.bytes) + "```\n";
    EXPECT_NE(strDocument.find(strShown), std::string::npos) << dump.strName;
  }
}

TEST(Formats, LineOfADump_HasOffsetBytesAndCharacters) {
  EXPECT_EQ(formatdumps::HexLines({'R', 'I', 0x80, 0}),
            "0000  52 49 80 00" + std::string(39, ' ') + "|RI..|\n");
}

TEST(Formats, OldDump_IsReplaced) {
  EXPECT_EQ(formatdumps::WithDumps("a\n<!-- dump x -->\n```\nold\n```\nb\n", {{"x", {0x41}}}),
            "a\n<!-- dump x -->\n```\n" + formatdumps::HexLines({0x41}) + "```\nb\n");
}

}  // namespace
