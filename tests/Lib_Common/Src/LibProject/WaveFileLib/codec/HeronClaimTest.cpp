// SPDX-License-Identifier: Apache-2.0
//
// Heron streams that claim more samples than they hold, or that stand for many samples with a few
// bytes: a claim gets no memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "HeronBytes.h"
#include "LargestAllocation.h"

namespace {

using heron::test::Bytes;
using heron::test::kKinds;
using heron::test::S_Pieces;

constexpr std::size_t kLittle = std::size_t{1} << 20;
constexpr std::uint64_t kMostSamples = 0xFFFFFFFF;

Bytes StreamOf(const S_Pieces& pieces) {
  return C_HeronBytes(kKinds[3], {1}, 8000).Coded(pieces.Joined()).Take();
}

// The run of a silent block at 48 kHz, which is the same at every rate.
Bytes SilentRun() {
  const std::vector<short> silence(2 * heron::BlockLength(4000));
  const auto pieces = heron::test::PiecesOf(heron::test::Coded(silence, 4000, 2), 4000);
  return {pieces.between[0].begin() + heron::kBlockHeadBytes, pieces.between[0].end()};
}

S_Pieces SilentBlocks(std::uint64_t qwCount, std::size_t nBlocks) {
  S_Pieces pieces;
  pieces.qwCount = qwCount;
  const Bytes run = SilentRun();
  for (std::size_t n = 0; n < nBlocks; ++n) pieces.Add(n, run);
  return pieces;
}

struct S_Result {
  bool bDecoded = false;
  std::size_t nSamples = 0;
  std::size_t cbLargest = 0;
};

S_Result Decode(const Bytes& stream, unsigned int dwRate) {
  C_WavData sound;
  sound.SetWavInfoData(dwRate, 0, 1, 16, 16, true);
  C_HeronCodec codec;
  ResetLargestAllocation();
  S_Result result;
  result.bDecoded = codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), &sound);
  result.cbLargest = LargestAllocation();
  result.nSamples = sound.GetBufferLength() / sizeof(short);
  return result;
}

void ExpectRefusedWithLittle(const S_Pieces& pieces, unsigned int dwRate) {
  const S_Result result = Decode(StreamOf(pieces), dwRate);
  EXPECT_FALSE(result.bDecoded);
  EXPECT_EQ(result.nSamples, 0U);
  EXPECT_LT(result.cbLargest, kLittle);
}

TEST(HeronClaim, CountWithoutBlocks_IsRefused) {
  ExpectRefusedWithLittle(SilentBlocks(kMostSamples, 0), 48000);
}

TEST(HeronClaim, CountAboveOneBlock_GivesThatBlock) {
  const S_Result result = Decode(StreamOf(SilentBlocks(kMostSamples, 1)), 48000);
  EXPECT_TRUE(result.bDecoded);
  EXPECT_EQ(result.nSamples, heron::BlockLength(48000));
  EXPECT_LT(result.cbLargest, kLittle);
}

TEST(HeronClaim, Silence_TakesTheMemoryOfItsSamples) {
  constexpr std::size_t kBlocks = 50;
  const std::size_t nSamples = kBlocks * heron::BlockLength(48000);
  const S_Result result = Decode(StreamOf(SilentBlocks(nSamples, kBlocks)), 48000);
  EXPECT_TRUE(result.bDecoded);
  EXPECT_EQ(result.nSamples, nSamples);
  EXPECT_EQ(result.cbLargest, nSamples * sizeof(short));
}

TEST(HeronClaim, FourGibibytesOfPcm_AreRefusedBeforeAnyBlockIsDecoded) {
  constexpr std::size_t kSamplesOf4GiB = std::size_t{1} << 31;
  const std::size_t nBlocks = kSamplesOf4GiB / heron::BlockLength(48000) + 1;
  ExpectRefusedWithLittle(SilentBlocks(kSamplesOf4GiB, nBlocks), 48000);
  ExpectRefusedWithLittle(SilentBlocks(kMostSamples, nBlocks), 48000);
}

TEST(HeronClaim, ManyFalseRunsWithRightChecks_AreRefusedWithoutMemoryForThem) {
  S_Pieces pieces;
  constexpr std::size_t kBlocks = 300;
  pieces.qwCount = kBlocks * heron::BlockLength(48000);
  const Bytes noRun(5, 0x5A);
  for (std::size_t n = 0; n < kBlocks; ++n) pieces.Add(n, noRun);
  ExpectRefusedWithLittle(pieces, 48000);
}

// Each of these blocks claims that 127 others are missing before it.
TEST(HeronClaim, MostlyMissingSounds_AreRefusedAbove64MiB) {
  S_Pieces pieces;
  pieces.qwCount = kMostSamples;
  const Bytes run = SilentRun();
  for (std::size_t n = 1; n <= 40; ++n) pieces.Add(128 * n - 1, run);
  ExpectRefusedWithLittle(pieces, 48000);
  pieces.between.resize(2);
  ExpectRefusedWithLittle(pieces, 48000);
  // At this rate, 254 blocks are 8 MB.
  const S_Result result = Decode(StreamOf(pieces), 4000);
  EXPECT_TRUE(result.bDecoded);
  EXPECT_EQ(result.nSamples, 256 * heron::BlockLength(4000));
}

// 174 blocks more are missing than are there, which is a little less than 64 MiB of PCM, then 175.
TEST(HeronClaim, MissingBlocks_MayBe64MiBMoreThanAreThere) {
  const std::size_t nLength = heron::BlockLength(48000);
  S_Pieces pieces;
  pieces.qwCount = kMostSamples;
  const Bytes run = SilentRun();
  pieces.Add(127, run);
  pieces.Add(177, run);
  const S_Result result = Decode(StreamOf(pieces), 48000);
  EXPECT_TRUE(result.bDecoded);
  EXPECT_EQ(result.nSamples, 178 * nLength);
  pieces.between.pop_back();
  pieces.Add(178, run);
  ExpectRefusedWithLittle(pieces, 48000);
}

TEST(HeronClaim, AsManyMissingBlocksAsThereAre_AreSilenceAtAnyLength) {
  const std::size_t nLength = heron::BlockLength(48000);
  S_Pieces pieces;
  pieces.qwCount = 500 * nLength;
  const Bytes run = SilentRun();
  for (std::size_t n = 0; n < 250; ++n) pieces.Add(2 * n + 1, run);
  const S_Result result = Decode(StreamOf(pieces), 48000);
  EXPECT_TRUE(result.bDecoded);
  EXPECT_EQ(result.nSamples, 500 * nLength);
}

}  // namespace
