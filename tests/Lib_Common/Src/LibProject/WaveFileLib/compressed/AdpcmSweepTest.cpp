// SPDX-License-Identifier: Apache-2.0
//
// All decoders on random bytes in blocks of random shapes.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "CodecSupport.h"
#include "compressed/DVIAdpcmCodec.h"
#include "compressed/G711Codec.h"

namespace {

class C_Shapes {
 public:
  // Mostly up to dwUsual, sometimes anything that 16 bits hold.
  std::uint16_t Number(unsigned int dwUsual) {
    const auto dwRandom = static_cast<unsigned int>(m_engine());
    return static_cast<std::uint16_t>(dwRandom >> 28 == 0 ? dwRandom : dwRandom % (dwUsual + 1));
  }
  C_Bytes Bytes(std::size_t cbCount) {
    C_Bytes bytes(cbCount);
    for (std::uint8_t& by : bytes) by = static_cast<std::uint8_t>(m_engine());
    return bytes;
  }
  // A record that a file may have: channels and block align are never 0.
  C_WavFileCodecInfo Record() {
    const std::uint16_t wTag = m_engine() % 2 == 0 ? WAVE_TAG_MS_ADPCM : WAVE_TAG_DVI_ADPCM;
    const auto notZero = [](std::uint16_t w) { return std::max(w, std::uint16_t{1}); };
    return InfoOf(BlockFmt({wTag, notZero(Number(4)), notZero(Number(40)), Number(80), 4},
                           Bytes(std::size_t{4} * 3)));
  }

 private:
  std::mt19937 m_engine{20};
};

std::vector<std::unique_ptr<C_MSAdpcmCodec>> AllCodecs() {
  std::vector<std::unique_ptr<C_MSAdpcmCodec>> codecs;
  codecs.push_back(std::make_unique<C_MSAdpcmCodec>());
  codecs.push_back(std::make_unique<C_DVIAdpcmCodec>());
  codecs.push_back(std::make_unique<C_DVIAdpcm3BitCodec>());
  codecs.push_back(std::make_unique<C_G711Codec>());
  codecs.push_back(std::make_unique<C_MuLawCodec>());
  codecs.push_back(std::make_unique<C_ALawCodec>());
  return codecs;
}

// With less room, decoding writes the beginning of the same samples.
void ExpectBeginning(const C_Samples& beginning, const C_Samples& all) {
  ASSERT_LE(beginning.size(), all.size());
  EXPECT_TRUE(std::equal(beginning.begin(), beginning.end(), all.begin()));
}

}  // namespace

TEST(AdpcmSweep, RandomBlocksOfRandomShapes_StayWithinTheirRoom) {
  C_Shapes shapes;
  const auto codecs = AllCodecs();
  for (int nRecord = 0; nRecord < 10'000 && !testing::Test::HasFailure(); ++nRecord) {
    const C_WavFileCodecInfo info = shapes.Record();
    for (std::size_t i = 0; i < 10; ++i) {
      const C_Bytes encoded = shapes.Bytes(std::min<std::size_t>(shapes.Number(60), 300));
      const unsigned int dwRoom = std::min<unsigned int>(shapes.Number(200), 600);
      C_MSAdpcmCodec& codec = *codecs[i % codecs.size()];
      ExpectBeginning(DecodeBlock(codec, info, encoded, dwRoom / 3),
                      DecodeBlock(codec, info, encoded, dwRoom));
      ExpectBeginning(Decode(codec, info, encoded, dwRoom / 3),
                      Decode(codec, info, encoded, dwRoom));
    }
  }
}

// When the blocks are whole and their size matches their number of samples, GetDecodedSize is
// exact. Decoding into as much room as it says then fills all of that room.
TEST(AdpcmSweep, WholeBlocks_FillTheirRoom) {
  C_DVIAdpcmCodec four;
  C_DVIAdpcm3BitCodec three;
  C_MSAdpcmCodec ms;
  C_Shapes shapes;
  for (std::uint16_t wChannels = 1; wChannels <= 6; ++wChannels) {
    for (std::uint16_t wGroups = 0; wGroups <= 5; ++wGroups) {
      const auto fill = [&](C_MSAdpcmCodec& codec, std::uint16_t wTag, int nHead, int nGroupBytes,
                            int nSamples) {
        const auto wAlign = static_cast<std::uint16_t>((nHead + nGroupBytes * wGroups) * wChannels);
        const auto info =
            InfoOf(S_Blocks{wTag, wChannels, wAlign, static_cast<std::uint16_t>(nSamples), 4});
        const C_Bytes encoded = shapes.Bytes(std::size_t{3} * wAlign);
        const auto dwSize = codec.GetDecodedSize(info, 3U * wAlign);
        ASSERT_EQ(dwSize, 6U * static_cast<unsigned>(nSamples) * wChannels);
        const C_Samples samples = Decode(codec, info, encoded, *dwSize);
        EXPECT_LE(std::count(samples.begin(), samples.end(), kUntouched), 1) << wChannels;
      };
      fill(four, WAVE_TAG_DVI_ADPCM, 4, 4, 1 + 8 * wGroups);
      fill(three, WAVE_TAG_DVI_ADPCM, 4, 12, 1 + 32 * wGroups);
      fill(ms, WAVE_TAG_MS_ADPCM, 7, 4, 2 + 8 * wGroups);
    }
  }
}
