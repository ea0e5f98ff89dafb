// SPDX-License-Identifier: Apache-2.0
//
// A Heron stream gives what C_HeronCodec::Decode gives, in pieces and from any place on.
#include "stream/HeronStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "HeronBytes.h"
#include "StreamsForTests.h"

namespace api::test {
namespace {

using heron::test::Decoded;
using heron::test::kKinds;
using heron::test::S_Pieces;

constexpr int kRate = 4000;
constexpr std::size_t kBlock = heron::BlockLength(kRate);
static_assert(kBlock == 16000);

std::optional<Samples> Read(I_ByteSource& source, std::uint32_t dwRate,
                            const std::vector<std::size_t>& sizes = {5000}) {
  try {
    return ReadAll(*OpenHeronStream(source, kWhole, dwRate).stream, sizes);
  } catch (const C_Failure& failure) {
    EXPECT_EQ(failure.Text().rfind("Heron stream: ", 0), 0U) << failure.Text();
    return std::nullopt;
  }
}

void ExpectAgreement(const Bytes& bytes, std::uint32_t dwRate = kRate) {
  const auto want = Decoded(bytes, dwRate);
  C_MemorySourceForTests source(bytes);
  ASSERT_EQ(Read(source, dwRate), want);
  C_ShownSource shown(bytes);
  ASSERT_EQ(Read(shown, dwRate, {16000, 777}), want);
}

Bytes StreamOf(const Bytes& coded) {
  return C_HeronBytes(kKinds[3], {1}, kRate).Coded(coded).Take();
}
Bytes StreamOf(const S_Pieces& pieces) { return StreamOf(pieces.Joined()); }

S_Pieces Encoded(const std::vector<short>& samples) {
  return heron::test::PiecesOf(heron::test::Coded(samples, kRate, 2), kRate);
}

// Five blocks of a voice; the last one is short.
constexpr std::size_t kSamples = 4 * kBlock + 1500;
const S_Pieces& Voice() {
  static const S_Pieces pieces = Encoded(TestVoice(kSamples));
  return pieces;
}
// The same with little sound in it, so that its blocks have few bytes.
const S_Pieces& Clicks() {
  static const S_Pieces pieces = [] {
    std::vector<short> samples(3 * kBlock + 200);
    for (std::size_t n = 100; n < samples.size(); n += 9000) samples[n] = 9000;
    return Encoded(samples);
  }();
  return pieces;
}

// ---- the same as the library

TEST(HeronSampleStream, EveryKindAndRate_GivesTheSamplesOfTheLibrary) {
  for (const auto& kind : kKinds) {
    for (const int nRate : {4000, 11025, 16000, 48000}) {
      if (nRate > 11025 && kind.nBitDepth != 2) continue;
      const auto voice = TestVoice(heron::BlockLength(nRate) + 4321);
      const Bytes bytes = C_HeronBytes(kind, voice, nRate).Take();
      C_MemorySourceForTests source(bytes);
      const auto opened = OpenHeronStream(source, kWhole, static_cast<std::uint32_t>(nRate));
      EXPECT_EQ(opened.nBitDepth, kind.nBitDepth);
      EXPECT_EQ(opened.stream->FrameCount(), voice.size());
      ASSERT_EQ(ReadAll(*opened.stream), Decoded(bytes, static_cast<std::uint32_t>(nRate)));
      EXPECT_EQ(opened.stream->DamagedFrames(), 0U);
    }
  }
}

TEST(HeronSampleStream, SoundsOfOneBlock_GiveTheSamplesOfTheLibrary) {
  for (const std::size_t nSamples : {std::size_t{1}, std::size_t{159}, kBlock - 1, kBlock}) {
    const C_HeronBytes stream(kKinds[0], TestVoice(nSamples), kRate);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(stream.Take())) << nSamples;
  }
}

TEST(HeronSampleStream, AudioBeforeEvents_EndsWhereTheySay) {
  C_HeronBytes stream(kKinds[3], TestVoice(300), kRate);
  const Bytes bytes = stream.Events({32, 1, 2, 3, 8, 9}).Take();
  ASSERT_TRUE(Decoded(bytes, kRate));
  ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes));
  for (std::uint32_t dwOffset = 0; dwOffset < bytes.size() + 20; ++dwOffset) {
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(stream.Offset(dwOffset).Take())) << dwOffset;
  }
}

TEST(HeronSampleStream, RatesAndModes_AreTakenAsTheLibraryTakesThem) {
  C_HeronBytes stream(kKinds[3], TestVoice(300), kRate);
  for (const std::uint32_t dwRate : {0U, 3999U, 4000U, 8000U, 48000U, 48001U, 0xFFFFFFFFU}) {
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(stream.Take(), dwRate)) << dwRate;
  }
  for (unsigned int nMode = 0; nMode < 256; ++nMode) {
    stream.Mode(static_cast<std::uint8_t>(nMode));
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(stream.Take())) << nMode;
  }
}

TEST(HeronSampleStream, CutAtEveryByte_GivesWhatTheLibraryGives) {
  for (const Bytes& bytes :
       {StreamOf(Clicks()), C_HeronBytes(kKinds[3], TestVoice(200), kRate).Take()}) {
    for (std::size_t n = 0; n <= bytes.size(); ++n) {
      const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n));
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(cut)) << n;
    }
  }
}

TEST(HeronSampleStream, ChangedAtEveryBit_GivesWhatTheLibraryGives) {
  for (const Bytes& bytes :
       {StreamOf(Clicks()), C_HeronBytes(kKinds[3], TestVoice(200), kRate).Take()}) {
    for (std::size_t n = 0; n < 8 * bytes.size(); ++n) {
      Bytes changed = bytes;
      changed[n / 8] ^= static_cast<std::uint8_t>(1U << n % 8);
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(changed)) << n;
    }
  }
}

TEST(HeronSampleStream, BlocksThatAreDoubledMissingSwappedOrForeign_GiveWhatTheLibraryGives) {
  const Bytes foreign = Encoded(std::vector<short>(3 * kBlock, 77)).between[1];
  const auto& voice = Voice();
  for (std::size_t n = 0; n < voice.between.size(); ++n) {
    const auto nAt = static_cast<std::ptrdiff_t>(n);
    S_Pieces pieces = voice;
    pieces.between.insert(pieces.between.begin() + nAt, voice.between[n]);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << "doubled " << n;
    pieces = voice;
    pieces.between.erase(pieces.between.begin() + nAt);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << "missing " << n;
    pieces = voice;
    std::swap(pieces.between[n], pieces.between[(n + 1) % voice.between.size()]);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << "swapped " << n;
    pieces = voice;
    pieces.between[n] = foreign;
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << "foreign " << n;
    pieces = voice;
    pieces.between.insert(pieces.between.begin() + nAt, Bytes(300, heron::kBlockSync));
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << "junk " << n;
  }
}

TEST(HeronSampleStream, SizesThatLie_GiveWhatTheLibraryGives) {
  const auto& voice = Voice();
  for (std::size_t n = 0; n < voice.between.size(); ++n) {
    for (const std::size_t nSize : {0U, 1U, 100U, 4000U, 5000U, 8000U, 12000U, 16000U, 100000U}) {
      S_Pieces pieces = voice;
      for (std::size_t i = 0; i < 3; ++i) {
        pieces.between[n][2 + i] = static_cast<std::uint8_t>(nSize >> 8 * i);
      }
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << n << ' ' << nSize;
    }
  }
}

// Heads in order around bytes that use up all the checks that a search may make.
TEST(HeronSampleStream, ADamagedBlockThatEndsTheSearch_EndsTheSound) {
  S_Pieces pieces = Voice();
  Bytes& block = pieces.between[1];
  for (std::size_t n = heron::kBlockHeadBytes; n + 7 <= block.size(); n += 7) {
    std::ranges::copy(Bytes{heron::kBlockSync, 9, 0, 16, 0, 0, 0},
                      block.begin() + static_cast<std::ptrdiff_t>(n));
  }
  const Bytes bytes = StreamOf(pieces);
  ASSERT_EQ(Decoded(bytes, kRate)->size(), kBlock);
  ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes));
  C_MemorySourceForTests source(bytes);
  const auto opened = OpenHeronStream(source, kWhole, kRate);
  EXPECT_EQ(opened.stream->FrameCount(), kSamples);
  opened.stream->Seek(3 * kBlock);
  EXPECT_EQ(opened.stream->FrameCount(), kBlock);
  EXPECT_EQ(opened.stream->Position(), kBlock);
}

TEST(HeronSampleStream, CountsThatLie_GiveWhatTheLibraryGives) {
  for (const std::uint64_t qwCount :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{kBlock}, std::uint64_t{kBlock + 1},
        std::uint64_t{4 * kBlock}, std::uint64_t{5 * kBlock}, std::uint64_t{5 * kBlock + 1},
        std::uint64_t{0x80000000}, std::uint64_t{0xFFFFFFFF}}) {
    S_Pieces pieces = Voice();
    pieces.qwCount = qwCount;
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf(pieces))) << qwCount;
  }
  ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf({0x80, 0x80, 0x80, 0x80, 0x80, 0x01, 1, 2})));
  ASSERT_NO_FATAL_FAILURE(ExpectAgreement(StreamOf({0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 1, 2, 3})));
}

TEST(HeronSampleStream, SoundsThatAreMostlyMissing_AreRefusedAsInTheLibrary) {
  const S_Pieces silence = Encoded(std::vector<short>(2 * kBlock));
  const Bytes run(silence.between[0].begin() + heron::kBlockHeadBytes, silence.between[0].end());
  for (const std::size_t nLast : {177U, 178U}) {
    S_Pieces pieces;
    pieces.qwCount = 0xFFFFFFFF;
    pieces.Add(127, run);
    pieces.Add(nLast, run);
    const Bytes bytes = StreamOf(pieces);
    ASSERT_EQ(Decoded(bytes, 48000).has_value(), nLast == 177);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes, 48000)) << nLast;
  }
}

// The heads of all blocks are in order, so that it shows only later that most are damaged.
TEST(HeronSampleStream, ASoundOfWhichMostIsDamaged_FailsWhenThatShows) {
  const S_Pieces silence = Encoded(std::vector<short>(2 * kBlock));
  S_Pieces pieces;
  pieces.qwCount = 400 * heron::BlockLength(48000);
  for (std::size_t n = 0; n < 400; ++n) {
    pieces.Add(n, std::span(silence.between[0]).subspan(heron::kBlockHeadBytes));
    if (n > 0 && n < 399 && n % 120 != 0) pieces.between.back()[5] ^= 1;
  }
  const Bytes bytes = StreamOf(pieces);
  ASSERT_FALSE(Decoded(bytes, 48000));
  C_MemorySourceForTests source(bytes);
  const auto opened = OpenHeronStream(source, kWhole, 48000);
  Samples samples(2 * heron::BlockLength(48000));
  EXPECT_EQ(opened.stream->Read(std::span(samples)), heron::BlockLength(48000));
  for (int n = 0; n < 2; ++n) {
    EXPECT_EQ(StatusOf([&] { opened.stream->Read(std::span(samples)); }), VOXPLAY_DAMAGED);
  }
}

TEST(HeronSampleStream, FourGibibytesOfSamples_AreRefused) {
  const S_Pieces silence = Encoded(std::vector<short>(2 * kBlock));
  S_Pieces pieces;
  pieces.qwCount = std::uint64_t{1} << 31;
  const std::size_t nBlocks = (std::size_t{1} << 31) / heron::BlockLength(48000) + 1;
  for (std::size_t n = 0; n < nBlocks; ++n) {
    pieces.Add(n, std::span(silence.between[0]).subspan(heron::kBlockHeadBytes));
  }
  C_MemorySourceForTests source(StreamOf(pieces));
  EXPECT_EQ(StatusOf([&] { OpenHeronStream(source, kWhole, 48000); }), VOXPLAY_TOO_LARGE);
  // A damaged block in the last place leaves the sound shorter than that.
  pieces.between.back()[5] ^= 1;
  C_MemorySourceForTests shorter(StreamOf(pieces));
  EXPECT_EQ(OpenHeronStream(shorter, kWhole, 48000).stream->FrameCount(),
            (nBlocks - 1) * heron::BlockLength(48000));
}

TEST(HeronSampleStream, Refusals_SayWhy) {
  const auto textOf = [](const Bytes& bytes, std::uint32_t dwRate) -> std::string {
    C_MemorySourceForTests source(bytes);
    try {
      OpenHeronStream(source, kWhole, dwRate);
    } catch (const C_Failure& failure) {
      return failure.Text();
    }
    return "";
  };
  const Bytes good = StreamOf(Clicks());
  EXPECT_EQ(textOf(good, 3999), "Heron stream: its sample rate of 3999 Hz is not 4000 to 48000 Hz");
  EXPECT_EQ(textOf({1, 0, 0}, kRate), "Heron stream: it ends within its head of 4 bytes");
  EXPECT_EQ(textOf({9, 3, 0, 0, 1}, kRate),
            "Heron stream: its head has mode 9, and its events begin at 3");
  EXPECT_EQ(textOf({1, 0, 0, 0, 0x80}, kRate), "Heron stream: it has no count of samples");
  EXPECT_EQ(textOf({1, 0, 0, 0, 9, 1, 2, 3}, kRate),
            "Heron stream: none of its blocks is there and right");
}

TEST(HeronSampleStream, ARangeWithinASource_IsAllThatIsRead) {
  const Bytes bytes = StreamOf(Clicks());
  Bytes around(100, heron::kBlockSync);
  around.insert(around.end(), bytes.begin(), bytes.end());
  around.insert(around.end(), 100, heron::kBlockSync);
  for (const std::size_t nSize : {bytes.size(), bytes.size() - 9}) {
    const auto want =
        Decoded({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nSize)}, kRate);
    C_MemorySourceForTests source(around);
    EXPECT_EQ(ReadAll(*OpenHeronStream(source, {100, nSize}, kRate).stream), want);
    C_ShownSource shown(around);
    EXPECT_EQ(ReadAll(*OpenHeronStream(shown, {100, nSize}, kRate).stream), want);
  }
}

// ---- pieces and seeking

TEST(HeronSampleStream, PiecesOfAnySize_GiveTheSameSamples) {
  const Bytes bytes = StreamOf(Voice());
  const auto want = Decoded(bytes, kRate);
  for (const std::size_t nSize : {1U, 319U, 15999U, 16000U, 16001U, 50000U, 100000U}) {
    C_MemorySourceForTests source(bytes);
    ASSERT_EQ(Read(source, kRate, {nSize}), want) << nSize;
  }
}

TEST(HeronSampleStream, SeeksAnywhere_GiveTheSamplesOfReadingAll) {
  S_Pieces damaged = Voice();
  damaged.between[1][50] ^= 1;
  S_Pieces missing = Voice();
  missing.between[2].clear();
  for (const S_Pieces& pieces : {Voice(), damaged, missing}) {
    const Bytes bytes = StreamOf(pieces);
    C_MemorySourceForTests source(bytes);
    const auto opened = OpenHeronStream(source, kWhole, kRate);
    ASSERT_NO_FATAL_FAILURE(ExpectExactSeeks(*opened.stream, Decoded(bytes, kRate).value(), 40, 1));
    EXPECT_EQ(StatusOf([&] { opened.stream->Seek(kSamples + 1); }), VOXPLAY_BAD_ARGUMENT);
  }
}

// ---- damage

TEST(HeronSampleStream, MissingAndDamagedBlocks_CountWithAllTheirFrames) {
  struct S_Case {
    std::size_t nBlock;
    std::uint64_t qwFrames;
    std::uint64_t qwDamaged;
  };
  for (const auto& [nBlock, qwFrames, qwDamaged] :
       {S_Case{0, kSamples, 16000}, S_Case{2, kSamples, 16000}, S_Case{4, 4 * kBlock, 0}}) {
    for (const bool bMissing : {false, true}) {
      S_Pieces pieces = Voice();
      if (bMissing) {
        pieces.between[nBlock].clear();
      } else {
        pieces.between[nBlock][99] ^= 1;
      }
      C_MemorySourceForTests source(StreamOf(pieces));
      const auto opened = OpenHeronStream(source, kWhole, kRate);
      EXPECT_EQ(ReadAll(*opened.stream).size(), qwFrames) << nBlock;
      EXPECT_EQ(opened.stream->DamagedFrames(), qwDamaged) << nBlock;
    }
  }
}

TEST(HeronSampleStream, AFalseRunWithARightCheck_CountsAsItIsRead) {
  S_Pieces pieces = Voice();
  pieces.between[4].clear();
  heron::AppendBlock(pieces.between[4], 4, Bytes(3, 0xFF));
  C_MemorySourceForTests source(StreamOf(pieces));
  const auto opened = OpenHeronStream(source, kWhole, kRate);
  opened.stream->Seek(4 * kBlock - 100);
  Samples samples(300);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 300U);
  EXPECT_EQ(opened.stream->DamagedFrames(), 200U);
  EXPECT_EQ(ReadAll(*OpenHeronStream(source, kWhole, kRate).stream).size(), kSamples);
}

TEST(HeronSampleStream, DamagedFramesThatAreReadAgain_CountOnce) {
  S_Pieces pieces = Voice();
  pieces.between[1][99] ^= 1;
  pieces.between[3][99] ^= 1;
  C_MemorySourceForTests source(StreamOf(pieces));
  const auto opened = OpenHeronStream(source, kWhole, kRate);
  Samples samples(kSamples);
  for (int n = 0; n < 3; ++n) {
    opened.stream->Seek(kBlock + 1000);
    EXPECT_EQ(opened.stream->Read(std::span(samples).first(500)), 500U);
    EXPECT_EQ(opened.stream->DamagedFrames(), 500U);
  }
  // Those before were passed over.
  opened.stream->Seek(0);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), kSamples);
  EXPECT_EQ(opened.stream->DamagedFrames(), kBlock - 1000 + kBlock);
}

// ---- empty runs

// Blocks 1 to 3, so that every other one may be empty.
S_Pieces WithEmptyRuns(unsigned int nMask) {
  S_Pieces pieces = Voice();
  for (std::size_t n = 0; n < pieces.between.size(); ++n) {
    if ((nMask >> n & 1U) == 0) continue;
    pieces.between[n].clear();
    heron::AppendBlock(pieces.between[n], n, {});
  }
  return pieces;
}

TEST(HeronSampleStream, EmptyRunsInEveryPlace_GiveWhatTheLibraryGives) {
  for (unsigned int nMask = 1; nMask < 32; ++nMask) {
    const Bytes bytes = StreamOf(WithEmptyRuns(nMask));
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes)) << nMask;
    const auto want = Decoded(bytes, kRate);
    if (!want) continue;
    C_MemorySourceForTests source(bytes);
    const auto opened = OpenHeronStream(source, kWhole, kRate);
    ASSERT_NO_FATAL_FAILURE(ExpectExactSeeks(*opened.stream, *want, 20, nMask)) << nMask;
  }
}

TEST(HeronSampleStream, EmptyRunsBeforeAFalseOne_AreNoSound) {
  S_Pieces pieces;
  pieces.qwCount = 10 * kBlock;
  pieces.Add(0, {});
  pieces.Add(1, {});
  pieces.Add(2, Bytes(50, 7));
  C_MemorySourceForTests source(StreamOf(pieces));
  EXPECT_EQ(StatusOf([&] { OpenHeronStream(source, kWhole, kRate); }), VOXPLAY_DAMAGED);
}

// ---- sources that fail or only go forward

TEST(HeronSampleStream, WhereTheSourceCannotBeRead_TheBlocksBeforeComeFirst) {
  const S_Pieces& voice = Voice();
  const Bytes bytes = StreamOf(voice);
  const Samples want = Decoded(bytes, kRate).value();
  // Only the reads of runs are longer than a head.
  class C_BrokenRuns final : public C_MemorySourceForTests {
   public:
    using C_MemorySourceForTests::C_MemorySourceForTests;
    std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> read) override {
      if (read.size() > 7 && qwPosition > qwBroken) {
        throw C_Failure(VOXPLAY_CANNOT_READ, "a bad sector");
      }
      return C_MemorySourceForTests::ReadSome(qwPosition, read);
    }
    std::uint64_t qwBroken = 0;
  };
  C_BrokenRuns source(bytes);
  source.qwBroken = 7 + voice.between[0].size() + voice.between[1].size() - 1;
  const auto opened = OpenHeronStream(source, kWhole, kRate);
  Samples samples(want.size());
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 2 * kBlock);
  EXPECT_EQ(StatusOf([&] { opened.stream->Read(std::span(samples)); }), VOXPLAY_CANNOT_READ);
  EXPECT_EQ(StatusOf([&] { opened.stream->Seek(3 * kBlock); }), VOXPLAY_CANNOT_READ);
  EXPECT_EQ(opened.stream->Position(), 2 * kBlock);
  source.qwBroken = bytes.size();
  EXPECT_EQ(opened.stream->Read(std::span(samples).subspan(2 * kBlock)), kSamples - 2 * kBlock);
  EXPECT_EQ(samples, want);
}

TEST(HeronSampleStream, ASourceThatBecomesShorter_CannotBeRead) {
  class C_Shrinking final : public C_MemorySourceForTests {
   public:
    using C_MemorySourceForTests::C_MemorySourceForTests;
    std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> read) override {
      const std::size_t nLeft = nSize - std::min<std::uint64_t>(qwPosition, nSize);
      return C_MemorySourceForTests::ReadSome(qwPosition, read.first(std::min(read.size(), nLeft)));
    }
    std::size_t nSize = 1000000;
  };
  C_Shrinking source(StreamOf(Voice()));
  const auto opened = OpenHeronStream(source, kWhole, kRate);
  source.nSize = 5000;
  Samples samples(kSamples);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), kBlock);
  EXPECT_EQ(StatusOf([&] { opened.stream->Read(std::span(samples)); }), VOXPLAY_CANNOT_READ);
}

TEST(HeronSampleStream, APipe_IsRefused) {
  C_PipeSource source(StreamOf(Voice()));
  EXPECT_EQ(StatusOf([&] { OpenHeronStream(source, kWhole, kRate); }), VOXPLAY_CANNOT_SEEK);
}

}  // namespace
}  // namespace api::test
