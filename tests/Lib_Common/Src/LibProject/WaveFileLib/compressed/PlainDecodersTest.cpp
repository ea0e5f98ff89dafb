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
