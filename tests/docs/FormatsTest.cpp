// SPDX-License-Identifier: Apache-2.0
//
// docs/FORMATS.md against the library's writers, and its statements about the dumps against its
// readers.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "FormatDumps.h"
#include "PublicSounds.h"

namespace {

std::vector<std::uint8_t> DumpOf(const std::string& strName) {
  for (const auto& dump : formatdumps::AllDumps()) {
    if (dump.strName == strName) return dump.bytes;
  }
  ADD_FAILURE() << strName;
  return {};
}

std::vector<std::int16_t> SamplesOf(const std::string& strName) {
  const auto bytes = DumpOf(strName);
  voxplay::Reader reader(AsBytes(bytes));
  return ReadRest(reader);
}

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

using C_Samples = std::vector<std::int16_t>;

TEST(Formats, SamplesThatTheDocumentNames_AreThoseOfTheDumps) {
  EXPECT_EQ(SamplesOf("wav"), (C_Samples{1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000}));
  EXPECT_EQ(SamplesOf("float"), (C_Samples{16384, -32768}));
  EXPECT_EQ(SamplesOf("padded"), (C_Samples{256, 512, 768}));
  EXPECT_EQ(SamplesOf("rf64"), (C_Samples{1000, 2000, 3000, 4000}));
  EXPECT_EQ(SamplesOf("alaw"), (C_Samples{0, -32768, 5376, -27392}));
  EXPECT_EQ(SamplesOf("mulaw"), (C_Samples{-32735, -1, 32734, 0}));
  EXPECT_EQ(SamplesOf("msadpcm"), (C_Samples{900, 1000, 1016, 1048, 1032, 1032}));
  EXPECT_EQ(SamplesOf("dvi"), (C_Samples{1000, 1002, 1008, 1018, 1029, 1043, 1065, 1101, 1177}));
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
