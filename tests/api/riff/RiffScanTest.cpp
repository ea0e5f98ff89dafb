// SPDX-License-Identifier: Apache-2.0
//
// What the class library does not read; what it reads is compared with it in
// RiffScanClassLibraryTest.cpp.
#include "riff/RiffScan.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "TempFolder.h"
#include "TestInput.h"
#include "WavBytes.h"

namespace {

using api::S_FoundChunk;
using api::S_RiffContents;
using api::test::C_TestInput;

C_Bytes U64(std::uint64_t qwValue) {
  return Join(
      {U32(static_cast<std::uint32_t>(qwValue)), U32(static_cast<std::uint32_t>(qwValue >> 32))});
}

std::string NameOf(const S_FoundChunk& chunk) { return {chunk.id.begin(), chunk.id.end()}; }

// "fmt 12..28 data 36..136"; a cut chunk ends with "(90 of 100)".
std::string Listing(const S_RiffContents& contents) {
  std::string strText;
  for (const S_FoundChunk& chunk : contents.chunks) {
    const std::uint64_t qwEnd = chunk.payload.qwAt + chunk.payload.qwSize;
    if (!strText.empty()) strText += ", ";
    strText +=
        NameOf(chunk) + " " + std::to_string(chunk.payload.qwAt) + ".." + std::to_string(qwEnd);
    if (chunk.qwHeld != chunk.payload.qwSize) strText += " holds " + std::to_string(chunk.qwHeld);
  }
  return strText;
}

S_RiffContents Scanned(const C_Bytes& file) {
  const auto source = api::OpenMemorySource(file);
  return api::ScanRiff(*source).value_or(S_RiffContents{});
}

// An RF64 file with these sizes in its "ds64", whose "data" claims all ones.
C_Bytes Rf64(std::uint64_t qwRiffSize, std::uint64_t qwDataSize, const C_Bytes& data,
             const C_Bytes& entries = U32(0)) {
  const C_Bytes ds64 = Join({U64(qwRiffSize), U64(qwDataSize), U64(0), entries});
  return Join({Ascii("RF64"), U32(0xFFFFFFFF), Ascii("WAVE"), ChunkBytes("ds64", ds64),
               ChunkBytes("fmt ", FmtBytes(1, 1, 16000, 16)),
               ChunkBytes("data", 0xFFFFFFFF, data)});
}

C_Bytes PipedWav(std::uint32_t dwRiffSize, std::uint32_t dwDataSize, const C_Bytes& data) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", dwDataSize, data);
  return riff.RiffSize(dwRiffSize).Take();
}

}  // namespace

TEST(RiffScan, OrdinaryFile_IsListed) {
  const S_RiffContents contents = Scanned(MonoWav(100).Chunk("bext", RampBytes(7)).Take());
  EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..144, bext 152..159");
  EXPECT_EQ(std::string(contents.form.begin(), contents.form.end()), "WAVE");
  EXPECT_FALSE(contents.bRf64);
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_FALSE(contents.bCutShort);
}

TEST(RiffScan, OtherBeginnings_AreNoRiffFiles) {
  for (const C_Bytes& bytes : {C_Bytes{}, Ascii("RIFF"), Ascii("RIFX....WAVE"),
                               Ascii("RIFF....WAV"), Ascii("riff....WAVE")}) {
    const auto source = api::OpenMemorySource(bytes);
    EXPECT_FALSE(api::ScanRiff(*source).has_value());
  }
}

TEST(RiffScan, Find_GivesTheLastOne) {
  const S_RiffContents contents = Scanned(MonoWav(10).Chunk("data", RampBytes(4)).Take());
  ASSERT_NE(contents.Find("data"), nullptr);
  EXPECT_EQ(contents.Find("data")->payload.qwAt, 62u);
  EXPECT_EQ(contents.Find("none"), nullptr);
}

TEST(RiffScan, ChunkThatTheEndCuts_IsListedWithWhatIsThere) {
  C_Bytes file = MonoWav(100).Take();
  file.resize(100);
  const S_RiffContents contents = Scanned(file);
  EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..144 holds 56");
  EXPECT_TRUE(contents.bCutShort);
}

TEST(RiffScan, BytesThatAreMissingAfterTheSamples_AreMissed) {
  const C_Bytes file = MonoWav(100).Chunk("bext", RampBytes(20)).Take();
  EXPECT_FALSE(Scanned(file).bLacksBytes);
  const C_Bytes between(file.begin(), file.begin() + 144);
  EXPECT_EQ(Listing(Scanned(between)), "fmt  20..36, data 44..144");
  EXPECT_TRUE(Scanned(between).bLacksBytes);
  const C_Bytes within(file.begin(), file.end() - 1);
  EXPECT_TRUE(Scanned(within).bLacksBytes);
}

TEST(RiffScan, SizesThatProgramsGetWrong_DoNotMeanThatBytesAreMissing) {
  const std::uint32_t dwRight = 36 + 100;
  for (const std::uint32_t dwSize : {0U, 2U, dwRight, dwRight + 1, dwRight + 8, 0xFFFFFFFFU}) {
    EXPECT_FALSE(Scanned(MonoWav(100).RiffSize(dwSize).Take()).bLacksBytes) << dwSize;
  }
  EXPECT_TRUE(Scanned(MonoWav(100).RiffSize(dwRight + 9).Take()).bLacksBytes);
}

TEST(RiffScan, Rf64_TakesItsSizesFromDs64) {
  C_Bytes file = Rf64(92, 10, RampBytes(10));
  file = Join({file, ChunkBytes("LIST", Ascii("INFO"))});
  const S_RiffContents contents = Scanned(file);
  EXPECT_TRUE(contents.bRf64);
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_EQ(Listing(contents), "ds64 20..48, fmt  56..72, data 80..90, LIST 98..102");
}

TEST(RiffScan, Rf64_EndsWhereItsRiffSizeEnds) {
  const C_Bytes file = Join({Rf64(82, 10, RampBytes(10)), ChunkBytes("LIST", Ascii("INFO"))});
  EXPECT_EQ(Listing(Scanned(file)), "ds64 20..48, fmt  56..72, data 80..90");
}

TEST(RiffScan, Rf64Entries_GiveTheSizesOfOtherChunks) {
  const C_Bytes entries = Join({U32(2), Ascii("abcd"), U64(99), Ascii("LIST"), U64(4)});
  C_Bytes file = Rf64(0, 10, RampBytes(10), entries);
  file = Join({file, ChunkBytes("LIST", 0xFFFFFFFF, Ascii("INFO")), ChunkBytes("last", {1, 2})});
  EXPECT_EQ(Listing(Scanned(file)),
            "ds64 20..72, fmt  80..96, data 104..114, LIST 122..126, last 134..136");
}

TEST(RiffScan, Rf64SizesBeyondTheFile_AreClaims) {
  const S_RiffContents contents = Scanned(Rf64(0x7000000000, 0x6000000000, RampBytes(10)));
  EXPECT_EQ(Listing(contents), "ds64 20..48, fmt  56..72, data 80..412316860496 holds 10");
  EXPECT_TRUE(contents.bCutShort);
}

TEST(RiffScan, Rf64SizesBeyondAllFiles_DoNotOverflow) {
  const S_RiffContents contents =
      Scanned(Rf64(0xFFFFFFFFFFFFFFFE, 0xFFFFFFFFFFFFFFFE, RampBytes(10)));
  EXPECT_EQ(Listing(contents), "ds64 20..48, fmt  56..72, data 80..18446744073709551615 holds 10");
}

TEST(RiffScan, Rf64WithoutSizes_GoesToTheEnd) {
  const S_RiffContents contents = Scanned(Rf64(0, 0, RampBytes(10)));
  EXPECT_TRUE(contents.bToTheEnd);
  EXPECT_EQ(Listing(contents), "ds64 20..48, fmt  56..72, data 80..90");
}

TEST(RiffScan, Rf64SizeOfAllOnesThatDs64Names_IsASize) {
  const S_RiffContents contents = Scanned(Rf64(0x100000000, 0xFFFFFFFF, RampBytes(10)));
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_EQ(Listing(contents), "ds64 20..48, fmt  56..72, data 80..4294967375 holds 10");
}

TEST(RiffScan, PipeSizes_AreToTheEnd) {
  for (const std::uint32_t dwRiffSize : {0u, 0xFFFFFFFFu}) {
    for (const std::uint32_t dwDataSize : {0u, 0xFFFFFFFFu}) {
      const S_RiffContents contents = Scanned(PipedWav(dwRiffSize, dwDataSize, RampBytes(100)));
      EXPECT_TRUE(contents.bToTheEnd);
      EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..144");
    }
  }
}

TEST(RiffScan, LargestSizesThatProgramsThoughtOf_AreToTheEnd) {
  for (const std::uint32_t dwSize :
       {0x7F000000U, 0x7FFFF000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF0U, 0xFFFFFFFEU}) {
    const std::uint32_t dwRiffSize = dwSize > 0xFFFFFFDB ? dwSize : dwSize + 36;
    const S_RiffContents contents = Scanned(PipedWav(dwRiffSize, dwSize, RampBytes(100)));
    EXPECT_TRUE(contents.bToTheEnd) << dwSize;
    EXPECT_FALSE(contents.bLacksBytes) << dwSize;
    EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..144") << dwSize;
  }
}

TEST(RiffScan, SmallerSizesBeyondTheFile_AreClaims) {
  const S_RiffContents contents = Scanned(PipedWav(0x7F000023, 0x7EFFFFFF, RampBytes(100)));
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_TRUE(contents.bLacksBytes);
  EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..2130706475 holds 100");
}

TEST(RiffScan, LargeSizesInContainersOfOurOwn_AreClaims) {
  C_RiffBytes riff("VEMD");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0x7FFFF000, RampBytes(100));
  const S_RiffContents contents = Scanned(riff.RiffSize(0x7FFFF024).Take());
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_TRUE(contents.bLacksBytes);
}

// A file of more than 2 GiB whose end is missing.
TEST(RiffScan, LargeSizeThatLacksLittle_IsAClaim) {
  C_TempFolder folder;
  const std::string strPath =
      folder.Write("large.wav", PipedWav(0x7F000024, 0x7F000000, RampBytes(100)));
  std::filesystem::resize_file(strPath, 0x7F000000 - (64 << 20) + 44);
  const auto source = api::OpenFileSource(strPath.c_str());
  const S_RiffContents contents = api::ScanRiff(*source).value_or(S_RiffContents{});
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_TRUE(contents.bLacksBytes);
  EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..2130706476 holds 2063597568");
  std::filesystem::resize_file(strPath, 0x7F000000 - (64 << 20) + 43);
  const auto shorter = api::OpenFileSource(strPath.c_str());
  EXPECT_TRUE(api::ScanRiff(*shorter).value_or(S_RiffContents{}).bToTheEnd);
}

TEST(RiffScan, PipeSizeOfDataAlone_IsToTheEndOnlyWhenItIsAllOnes) {
  EXPECT_EQ(Listing(Scanned(PipedWav(136, 0xFFFFFFFF, RampBytes(100)))),
            "fmt  20..36, data 44..144");
  EXPECT_FALSE(Scanned(PipedWav(136, 0, RampBytes(100))).bToTheEnd);
}

TEST(RiffScan, SamplesOfZeroFromAPipe_BelongToTheSound) {
  const S_RiffContents contents = Scanned(PipedWav(0, 0, C_Bytes(100)));
  EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..144");
}

TEST(RiffScan, EmptyDataBeforeChunksUpToTheEnd_IsEmpty) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", {});
  riff.Chunk("LIST", Ascii("INFO?")).Raw({0}).Chunk("bext", RampBytes(3)).Raw({0});
  const S_RiffContents contents = Scanned(riff.RiffSize(0).Take());
  EXPECT_FALSE(contents.bToTheEnd);
  EXPECT_EQ(Listing(contents), "fmt  20..36, data 44..44, LIST 52..57, bext 66..69");
}

TEST(RiffScan, ManyEmptyDataChunks_TakeLinearWork) {
  C_RiffBytes riff("WAVE");
  C_Bytes chunks;
  const C_Bytes empty = ChunkBytes("data", {});
  for (int i = 0; i < 50000; ++i) chunks.insert(chunks.end(), empty.begin(), empty.end());
  C_TestInput input(riff.Raw(chunks).RiffSize(0).Take());
  const auto source = api::OpenInputSource(input.Record());
  const auto contents = api::ScanRiff(*source);
  ASSERT_TRUE(contents.has_value());
  EXPECT_EQ(contents->chunks.size(), 50000u);
  // 400,000 bytes in windows of 4,096, twice.
  EXPECT_LT(input.Reads(), 300);
}

TEST(RiffScan, ForwardInput_IsListedUpToItsData) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("bext", RampBytes(100001)).Raw({0}).Chunk("fmt ", FmtBytes(1, 1, 16000, 16));
  riff.Chunk("data", RampBytes(10)).Chunk("LIST", Ascii("INFO"));
  C_TestInput input(riff.Take());
  const auto source = api::OpenInputSource(input.WithoutSeek().WithoutSize().Record());
  std::string strFound;
  const auto contents = api::ScanRiff(*source, [&](const S_FoundChunk& chunk) {
    C_Bytes payload(static_cast<std::size_t>(chunk.payload.qwSize));
    if (NameOf(chunk) == "data") return;
    // Each payload is read as it comes by.
    EXPECT_TRUE(ReadExact(*source, chunk.payload.qwAt, payload));
    strFound += NameOf(chunk);
  });
  ASSERT_TRUE(contents.has_value());
  EXPECT_EQ(strFound, "bextfmt ");
  EXPECT_EQ(Listing(*contents), "bext 20..100021, fmt  100030..100046, data 100054..100064");
  EXPECT_TRUE(contents->bCutShort);
}

TEST(RiffScan, ForwardInputWithZerosBetweenChunks_NeverGoesBack) {
  C_RiffBytes riff("WAVE");
  for (const std::size_t cbZeros : {1u, 7u, 8u, 9u, 70000u, 13u}) {
    riff.Zeros(cbZeros).Chunk("abcd", RampBytes(3));
  }
  riff.Zeros(5).Chunk("data", RampBytes(10));
  const C_Bytes file = riff.Take();
  C_TestInput input(file);
  const auto source = api::OpenInputSource(input.WithoutSeek().WithoutSize().AtMost(8).Record());
  const auto contents = api::ScanRiff(*source);
  ASSERT_TRUE(contents.has_value());
  EXPECT_EQ(Listing(*contents), Listing(Scanned(file)));
}

// Standard pad bytes are zeros, and zeros are passed over anyway.
TEST(RiffScan, PadByteThatIsNotZero_IsPassedOver) {
  const auto fileOf = [](std::uint8_t byPad, const C_Bytes& rest) {
    const C_Bytes content = Join({Ascii("WAVE"), Ascii("odd "), U32(3), {1, 2, 3}, {byPad}, rest});
    return Join({Ascii("RIFF"), U32(static_cast<std::uint32_t>(content.size())), content});
  };
  const C_Bytes rest = Join({ChunkBytes("data", C_Bytes{5, 0, 6, 0}), ChunkBytes("bext", {1, 2})});
  for (const std::uint8_t byPad : C_Bytes{0x00, 0x01, 0x20, 0x61, 0xFF}) {
    EXPECT_EQ(Listing(Scanned(fileOf(byPad, rest))), "odd  20..23, data 32..36, bext 44..46")
        << int{byPad};
  }
  EXPECT_EQ(Listing(Scanned(fileOf('x', ChunkBytes("abcd", {1, 2})))), "odd  20..23, abcd 32..34");
}

TEST(RiffScan, OddPayloadWithoutAPadByte_IsFollowedAtOnce) {
  const C_Bytes content = Join({Ascii("WAVE"),
                                Ascii("odd "),
                                U32(3),
                                {1, 2, 3},
                                ChunkBytes("data", C_Bytes{5, 0, 6, 0}),
                                ChunkBytes("abcd", {1, 2})});
  EXPECT_EQ(Listing(Scanned(
                Join({Ascii("RIFF"), U32(static_cast<std::uint32_t>(content.size())), content}))),
            "odd  20..23, data 31..35, abcd 43..45");
}
