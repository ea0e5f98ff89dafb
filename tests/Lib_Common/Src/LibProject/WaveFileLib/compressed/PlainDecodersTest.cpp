// SPDX-License-Identifier: Apache-2.0
//
// The decoders against others that follow the definitions sample by sample, without tables, without
// whole groups and without wide registers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "CodecSupport.h"
#include "Processor.h"
#include "compressed/DVIAdpcmCodec.h"
#include "compressed/G711Codec.h"
#include "compressed/TablesAdpcm.h"

namespace {

using Codes = std::span<const std::uint8_t>;

constexpr auto kInstructions = {vcm::tagInstructions::kPlain, vcm::tagInstructions::kBase,
                                vcm::tagInstructions::kAvx2};

// Lets the code under test use all instructions again.
class C_AllInstructionsAtEnd {
 public:
  C_AllInstructionsAtEnd() : m_eBefore(vcm::UsableInstructions()) {}
  ~C_AllInstructionsAtEnd() { vcm::LimitInstructions(m_eBefore); }
  C_AllInstructionsAtEnd(const C_AllInstructionsAtEnd&) = delete;
  C_AllInstructionsAtEnd& operator=(const C_AllInstructionsAtEnd&) = delete;

 private:
  vcm::tagInstructions m_eBefore;
};

int Clipped(std::int64_t nValue) {
  return static_cast<int>(std::clamp<std::int64_t>(nValue, -32768, 32767));
}
int Signed16(Codes bytes, std::size_t nAt) {
  return static_cast<std::int16_t>(bytes[nAt] | bytes[nAt + 1] << 8);
}

// Puts samples into room for nCapacity of them.
struct S_Output {
  explicit S_Output(std::size_t nCapacity) : samples(nCapacity, kUntouched) {}
  void Put(std::size_t nAt, int nSample) {
    if (nAt < samples.size()) samples[nAt] = static_cast<short>(nSample);
  }
  C_Samples samples;
};

int MuLaw(int nCode) {
  if (nCode == 127) return -1;
  if (nCode == 255) return 0;
  const int nSegment = nCode / 16 % 8;
  const int nSteps = (1024 >> nSegment) * (nCode % 16);
  return nCode < 128 ? -(32768 >> nSegment) + 33 + nSteps : (32768 >> nSegment) - 34 - nSteps;
}

int ALaw(int nCode) {
  static constexpr int kBases[] = {0, 256, 512, 1024, 2048, 4096, 8196, 16384};
  static constexpr int kShifts[] = {4, 4, 5, 6, 7, 8, 9, 10};
  const int nPlain = nCode ^ 0x55;
  const int nSegment = nPlain / 16 % 8;
  const int nMagnitude = kBases[nSegment] | nPlain % 16 << kShifts[nSegment];
  return static_cast<std::int16_t>(nPlain < 128 ? 0x8000 | nMagnitude : nMagnitude);
}

C_Samples PlainMs(const C_WavFileCodecInfo& info, Codes block, std::size_t nCapacity) {
  const std::size_t nChannels = info.GetPCMWAVEFORMAT().wChannels;
  S_Output output(nCapacity);
  if (block.size() < 7 * nChannels) return output.samples;
  std::vector<std::int64_t> deltas, last, before;
  for (std::size_t i = 0; i < nChannels; ++i) {
    deltas.push_back(Signed16(block, nChannels + 2 * i));
    last.push_back(Signed16(block, 3 * nChannels + 2 * i));
    before.push_back(Signed16(block, 5 * nChannels + 2 * i));
    output.Put(i, static_cast<int>(before[i]));
    output.Put(nChannels + i, static_cast<int>(last[i]));
  }
  for (std::size_t n = 0; n < 2 * (block.size() - 7 * nChannels); ++n) {
    const std::size_t i = n % nChannels;
    const std::uint8_t byCodes = block[7 * nChannels + n / 2];
    const unsigned int dwCode = n % 2 == 0 ? byCodes / 16U : byCodes % 16U;
    const auto pair = info.GetMSADPCMCoefficients(block[i]);
    const std::int64_t nCode = dwCode < 8 ? dwCode : std::int64_t{dwCode} - 16;
    const int nNew =
        Clipped(((last[i] * pair.nFirst + before[i] * pair.nSecond) >> 8) + deltas[i] * nCode);
    deltas[i] =
        std::clamp<std::int64_t>(deltas[i] * kMSAdpcmAdaptation[dwCode] >> 8, 16, INT32_MAX);
    before[i] = last[i];
    last[i] = nNew;
    output.Put(2 * nChannels + n, nNew);
  }
  return output.samples;
}

C_Samples PlainIma(const C_WavFileCodecInfo& info, Codes block, std::size_t nCapacity) {
  const std::size_t nChannels = info.GetPCMWAVEFORMAT().wChannels;
  S_Output output(nCapacity);
  if (block.size() < 4 * nChannels) return output.samples;
  const std::size_t nGroups = (std::max<std::size_t>(info.GetSamplesPerBlock(), 1) - 1) / 8;
  for (std::size_t i = 0; i < nChannels; ++i) {
    int nSample = Signed16(block, 4 * i);
    int nIndex = std::min<int>(block[4 * i + 2], 88);
    output.Put(i, nSample);
    for (std::size_t n = 0; n < 8 * nGroups; ++n) {
      const std::size_t nByte = 4 * nChannels + (n / 8 * nChannels + i) * 4 + n % 8 / 2;
      // Groups begin only where there is room for a frame to begin.
      if (nByte >= block.size() || n / 8 * 8 + 1 > nCapacity / nChannels) break;
      const int nCode = n % 2 == 0 ? block[nByte] % 16 : block[nByte] / 16;
      const int nStep = kImaSteps[static_cast<std::size_t>(nIndex)];
      int nDifference = nStep >> 3;
      if ((nCode & 4) != 0) nDifference += nStep;
      if ((nCode & 2) != 0) nDifference += nStep >> 1;
      if ((nCode & 1) != 0) nDifference += nStep >> 2;
      nSample = Clipped((nCode & 8) != 0 ? nSample - nDifference : nSample + nDifference);
      nIndex = std::clamp(nIndex + kIma4BitIndexSteps[static_cast<std::size_t>(nCode & 7)], 0, 88);
      output.Put((n + 1) * nChannels + i, nSample);
    }
  }
  return output.samples;
}

class C_RandomBlocks {
 public:
  unsigned int Below(unsigned int dwEnd) { return static_cast<unsigned int>(m_engine() % dwEnd); }
  // Codes of all kinds, or of one kind throughout, which drives the state to its ends.
  C_Bytes Block(std::size_t cb) {
    C_Bytes block(cb);
    const bool bOneCode = Below(3) == 0;
    const auto byCode = static_cast<std::uint8_t>(Below(256));
    for (std::uint8_t& by : block) by = bOneCode ? byCode : static_cast<std::uint8_t>(Below(256));
    return block;
  }

 private:
  std::mt19937 m_engine{31};
};

// What blocks decode to that come one after another, the last of which may be cut.
C_Samples PlainMsBlocks(const C_WavFileCodecInfo& info, Codes blocks, std::size_t nCapacity) {
  const S_PcmFormatRecord pcm = info.GetPCMWAVEFORMAT();
  const std::size_t nBlockSamples = std::size_t{info.GetSamplesPerBlock()} * pcm.wChannels;
  C_Samples samples;
  while (!blocks.empty()) {
    const bool bWhole = blocks.size() >= pcm.wBlockAlign;
    const std::size_t nLeft = nCapacity - samples.size();
    const Codes block = bWhole ? blocks.first(pcm.wBlockAlign) : blocks;
    const C_Samples decoded = PlainMs(info, block, bWhole ? std::min(nBlockSamples, nLeft) : nLeft);
    samples.insert(samples.end(), decoded.begin(), decoded.end());
    blocks = blocks.subspan(block.size());
  }
  samples.resize(nCapacity, kUntouched);
  return samples;
}

// Coefficients at their limits, in all pairs, and ordinary ones.
C_Bytes AllPairsOfLimits() {
  C_Bytes pairs;
  for (const int nFirst : {-32768, 32767, 0, 256}) {
    for (const int nSecond : {-32768, 32767, 0, -256}) {
      pairs = Join({pairs, U16(static_cast<std::uint16_t>(nFirst)),
                    U16(static_cast<std::uint16_t>(nSecond))});
    }
  }
  return pairs;
}

// Blocks in which numbers at their limits are as frequent as others, and in which a code often
// comes many times, so that deltas go up to their limit and down again.
C_Bytes MsBlocks(C_RandomBlocks& random, const S_Blocks& format, std::size_t cbBlocks) {
  constexpr std::uint16_t kLimits[] = {0, 15, 16, 17, 0x7FFF, 0x8000, 0xFFFF};
  C_Bytes blocks;
  while (blocks.size() < cbBlocks) {
    C_Bytes block;
    for (unsigned int i = 0; i < format.wChannels; ++i) {
      block.push_back(static_cast<std::uint8_t>(random.Below(17)));
    }
    const bool bNegative = random.Below(20) == 0;
    for (unsigned int i = 0; i < 3U * format.wChannels; ++i) {
      const std::uint16_t wAny = static_cast<std::uint16_t>(random.Below(0x10000));
      std::uint16_t wValue = random.Below(2) == 0 ? wAny : kLimits[random.Below(7)];
      if (i < format.wChannels && !bNegative) wValue &= 0x7FFF;
      block = Join({block, U16(wValue)});
    }
    while (block.size() < format.wBlockAlign) {
      const auto byCodes = static_cast<std::uint8_t>(random.Below(256));
      block.insert(block.end(), random.Below(2) == 0 ? 1 : random.Below(60), byCodes);
    }
    block.resize(format.wBlockAlign);
    blocks.insert(blocks.end(), block.begin(), block.end());
  }
  return {blocks.begin(), blocks.begin() + static_cast<std::ptrdiff_t>(cbBlocks)};
}

void ExpectMsBlocks(const C_WavFileCodecInfo& info, const C_Bytes& blocks,
                    unsigned int dwCapacity) {
  const C_AllInstructionsAtEnd restore;
  const C_Samples expected = PlainMsBlocks(info, blocks, dwCapacity / 2);
  C_MSAdpcmCodec codec;
  for (const vcm::tagInstructions eWidest : kInstructions) {
    vcm::LimitInstructions(eWidest);
    ASSERT_EQ(Decode(codec, info, blocks, dwCapacity), expected)
        << info.GetPCMWAVEFORMAT().wChannels << " channels, " << blocks.size() << " bytes, "
        << info.GetPCMWAVEFORMAT().wBlockAlign << " a block, room for " << dwCapacity;
  }
}

using Reference = C_Samples (*)(const C_WavFileCodecInfo&, Codes, std::size_t);

// Every length of each block, with room for all of it or for less.
void ExpectSame(C_MSAdpcmCodec& codec, Reference pfnReference, const C_WavFileCodecInfo& info,
                C_RandomBlocks& random, unsigned int dwHeader) {
  C_Bytes block = random.Block(random.Below(90));
  const unsigned int dwChannels = info.GetPCMWAVEFORMAT().wChannels;
  // Headers of all values now and then; else codes decide what happens.
  if (random.Below(4) != 0) {
    for (std::size_t i = 0; i < std::min<std::size_t>(block.size(), dwHeader * dwChannels); ++i) {
      block[i] = static_cast<std::uint8_t>(random.Below(i < dwChannels ? 3 : 256));
    }
  }
  for (std::size_t cb = 0; cb <= block.size(); ++cb) {
    const C_Bytes part(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(cb));
    const unsigned int dwCapacity = random.Below(2) == 0 ? 1000 : random.Below(400);
    ASSERT_EQ(DecodeBlock(codec, info, part, dwCapacity), pfnReference(info, part, dwCapacity / 2))
        << dwChannels << " channels, " << cb << " bytes, room for " << dwCapacity;
  }
}

}  // namespace

TEST(PlainDecoders, AllCodesOfBothLaws_AreThoseOfTheDefinition) {
  const C_AllInstructionsAtEnd restore;
  C_Bytes codes(1024);
  std::iota(codes.begin(), codes.end(), static_cast<std::uint8_t>(0));
  C_MuLawCodec muLaw;
  C_ALawCodec aLaw;
  const C_WavFileCodecInfo info = InfoOf(S_Blocks{WAVE_TAG_MULAW, 1, 1, 0, 8});
  for (const vcm::tagInstructions eWidest : kInstructions) {
    vcm::LimitInstructions(eWidest);
    const C_Samples linear = Decode(muLaw, info, codes, 2048);
    const C_Samples magnitudes = Decode(aLaw, info, codes, 2048);
    for (std::size_t i = 0; i < codes.size(); ++i) {
      EXPECT_EQ(linear[i], MuLaw(static_cast<int>(i % 256))) << i;
      EXPECT_EQ(magnitudes[i], ALaw(static_cast<int>(i % 256))) << i;
    }
  }
}

TEST(PlainDecoders, BothLawsAtEveryLengthAndCapacity_WriteWhatFits) {
  const C_AllInstructionsAtEnd restore;
  C_RandomBlocks random;
  C_MuLawCodec muLaw;
  C_ALawCodec aLaw;
  const C_WavFileCodecInfo info = InfoOf(S_Blocks{WAVE_TAG_MULAW, 1, 1, 0, 8});
  for (const vcm::tagInstructions eWidest : kInstructions) {
    vcm::LimitInstructions(eWidest);
    for (std::size_t cb = 0; cb < 140; ++cb) {
      const C_Bytes codes = random.Block(cb);
      for (const unsigned int dwCapacity : {2 * static_cast<unsigned int>(cb), random.Below(290)}) {
        S_Output linear(dwCapacity / 2);
        S_Output magnitudes(dwCapacity / 2);
        for (std::size_t i = 0; i < cb; ++i) linear.Put(i, MuLaw(codes[i]));
        for (std::size_t i = 0; i < cb; ++i) magnitudes.Put(i, ALaw(codes[i]));
        ASSERT_EQ(Decode(muLaw, info, codes, dwCapacity), linear.samples) << cb;
        ASSERT_EQ(Decode(aLaw, info, codes, dwCapacity), magnitudes.samples) << cb;
      }
    }
  }
}

TEST(PlainDecoders, MsAdpcmBlocksCutAnywhere_GiveTheSameSamples) {
  C_RandomBlocks random;
  C_MSAdpcmCodec codec;
  for (int i = 0; i < 400; ++i) {
    const auto wChannels = static_cast<std::uint16_t>(1 + random.Below(4));
    // The largest coefficients drive sums to their ends.
    const C_Bytes pairs = i % 8 == 0 ? C_Bytes{0, 0x80, 0, 0x80, 0xFF, 0x7F, 0xFF, 0x7F, 0, 1, 0, 0}
                                     : random.Block(12);
    const C_WavFileCodecInfo info =
        InfoOf(BlockFmt({WAVE_TAG_MS_ADPCM, wChannels, 90, 200, 4}, pairs));
    ExpectSame(codec, &PlainMs, info, random, 7);
  }
}

TEST(PlainDecoders, AnyNumberOfMsAdpcmBlocks_GivesTheSamplesOfEach) {
  C_RandomBlocks random;
  for (int i = 0; i < 300; ++i) {
    const auto wChannels = static_cast<std::uint16_t>(i % 7 == 0 ? 3 : 1 + i % 2);
    const auto wBlock = static_cast<std::uint16_t>(7 * wChannels + random.Below(250));
    // As many samples as a block holds, or fewer or more.
    const unsigned int dwHeld = 2U + 2U * (wBlock - 7U * wChannels) / wChannels;
    const auto wSamples = static_cast<std::uint16_t>(
        random.Below(2) == 0 ? dwHeld : random.Below(dwHeld + dwHeld / 4 + 3));
    const S_Blocks format{WAVE_TAG_MS_ADPCM, wChannels, wBlock, wSamples, 4};
    const C_Bytes blocks = MsBlocks(random, format, random.Below(20U * wBlock));
    const unsigned int dwAll = 2U * wSamples * wChannels * 20U;
    ExpectMsBlocks(InfoOf(BlockFmt(format, AllPairsOfLimits())), blocks,
                   random.Below(2) == 0 ? dwAll : random.Below(dwAll + 1));
  }
}

TEST(PlainDecoders, MsAdpcmBlocksOfEverySize_AreTheSameWithAvx2) {
  const C_AllInstructionsAtEnd restore;
  C_RandomBlocks random;
  C_MSAdpcmCodec codec;
  for (std::uint16_t wBlock = 7; wBlock <= 2048; ++wBlock) {
    const auto wChannels = static_cast<std::uint16_t>(wBlock < 14 ? 1 : 1 + random.Below(2));
    const auto wSamples = static_cast<std::uint16_t>(2 + 2 * (wBlock - 7 * wChannels) / wChannels);
    const S_Blocks format{WAVE_TAG_MS_ADPCM, wChannels, wBlock, wSamples, 4};
    const C_WavFileCodecInfo info = InfoOf(BlockFmt(format, AllPairsOfLimits()));
    const C_Bytes blocks = MsBlocks(random, format, wBlock * std::size_t{5});
    const unsigned int dwRoom = 2U * wSamples * wChannels * 5U;
    vcm::LimitInstructions(vcm::tagInstructions::kPlain);
    const C_Samples plain = Decode(codec, info, blocks, dwRoom);
    vcm::LimitInstructions(vcm::tagInstructions::kAvx2);
    ASSERT_EQ(Decode(codec, info, blocks, dwRoom), plain) << wBlock;
  }
}

// The sum of both products is 2^31 in one block; its neighbours are ordinary.
TEST(PlainDecoders, MsAdpcmPredictionFromTheLowestNumbers_IsPositive) {
  const S_Blocks format{WAVE_TAG_MS_ADPCM, 1, 40, 68, 4};
  const C_WavFileCodecInfo info = InfoOf(BlockFmt(format, AllPairsOfLimits()));
  for (std::size_t nBlock = 0; nBlock < 8; ++nBlock) {
    C_Bytes blocks(std::size_t{8} * 40, 0x11);
    for (std::size_t i = 0; i < 8; ++i) {
      const C_Bytes head =
          i == nBlock ? C_Bytes{0, 16, 0, 0, 0x80, 0, 0x80} : C_Bytes{15, 16, 0, 0, 0x80, 0, 0x80};
      std::copy(head.begin(), head.end(), blocks.begin() + static_cast<std::ptrdiff_t>(40 * i));
    }
    EXPECT_EQ(PlainMsBlocks(info, blocks, 544)[68 * nBlock + 2], 32767);
    ExpectMsBlocks(info, blocks, 1088);
  }
}

// Each code as the one that comes after deltas of all sizes, up to the largest one.
TEST(PlainDecoders, MsAdpcmDeltasUpToTheirLimit_AdaptAsTheDefinitionSays) {
  const S_Blocks format{WAVE_TAG_MS_ADPCM, 1, 80, 148, 4};
  // Both coefficients are 0, so the samples show the delta alone.
  const C_WavFileCodecInfo info = InfoOf(BlockFmt(format, C_Bytes(4, 0)));
  for (std::uint8_t byRising = 0; byRising < 32; ++byRising) {
    C_Bytes blocks;
    for (std::uint8_t byCode = 0; byCode < 16; ++byCode) {
      C_Bytes block{0, 0xFF, 0x7F, 0, 0, 0, 0};
      block.resize(7 + byRising / 2U, 0x88);
      block.push_back(static_cast<std::uint8_t>((byRising % 2 == 0 ? 0x00 : 0x80) | byCode));
      // Falling until the delta shows in the samples.
      block.resize(80, 0x11);
      blocks.insert(blocks.end(), block.begin(), block.end());
    }
    ExpectMsBlocks(info, blocks, 16 * 148 * 2);
  }
}

TEST(PlainDecoders, ImaBlocksCutAnywhere_GiveTheSameSamples) {
  C_RandomBlocks random;
  C_DVIAdpcmCodec codec;
  for (int i = 0; i < 600; ++i) {
    const auto wChannels = static_cast<std::uint16_t>(1 + random.Below(4));
    const auto wSamples = static_cast<std::uint16_t>(random.Below(200));
    const C_WavFileCodecInfo info =
        InfoOf(BlockFmt({WAVE_TAG_DVI_ADPCM, wChannels, 90, wSamples, 4}));
    ExpectSame(codec, &PlainIma, info, random, 4);
  }
}

TEST(PlainDecoders, EveryStepAndCodeOfIma_DoesWhatTheDefinitionSays) {
  C_DVIAdpcmCodec codec;
  const C_WavFileCodecInfo info = InfoOf(S_Blocks{WAVE_TAG_DVI_ADPCM, 1, 8, 9, 4});
  for (int nIndex = 0; nIndex < 256; ++nIndex) {
    for (int nCode = 0; nCode < 256; ++nCode) {
      for (const std::uint16_t wSample : std::initializer_list<std::uint16_t>{0, 0x7F00, 0x8100}) {
        C_Bytes block = U16(wSample);
        for (const int nByte : {nIndex, 0, nCode, 0x77, nCode, 0xFF}) {
          block.push_back(static_cast<std::uint8_t>(nByte));
        }
        ASSERT_EQ(DecodeBlock(codec, info, block, 18), PlainIma(info, block, 9))
            << nIndex << " " << nCode;
      }
    }
  }
}
