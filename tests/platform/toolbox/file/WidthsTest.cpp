// SPDX-License-Identifier: Apache-2.0
//
// WAV files of every width and number of channels: exactly their samples are heard.
#include <cstring>

#include "OfflinePlayer.h"
#include "TempFolder.h"
#include "WavBytes.h"

namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;
constexpr std::size_t kFrames = 600;

struct S_Width {
  const char* pszName;
  std::uint16_t wTag;
  std::uint16_t wBits;       // of the container
  std::uint16_t wValidBits;  // 0: a format record without the extension
};

// Every bit of a sample differs from frame to frame; the bits that are not valid are 0.
C_Bytes SamplesOf(const S_Width& width, std::size_t nSamples) {
  C_Bytes bytes;
  std::uint32_t dwNoise = 99;
  for (std::size_t n = 0; n < nSamples; ++n) {
    dwNoise = dwNoise * 1664525U + 1013904223U;
    const double dValue = static_cast<double>(static_cast<std::int32_t>(dwNoise)) / 2147483648.0;
    const auto fValue = static_cast<float>(dValue);
    std::array<std::uint8_t, 8> raw{};
    const std::uint32_t dwKept = width.wValidBits == 0 || width.wTag == kFloat
                                     ? dwNoise
                                     : dwNoise >> (32 - width.wValidBits)
                                                      << (32 - width.wValidBits);
    const std::uint32_t dwLow = width.wBits >= 32 ? dwKept : dwKept >> (32 - width.wBits);
    std::memcpy(raw.data(), &dwLow, 4);
    if (width.wTag == kFloat && width.wBits == 32) std::memcpy(raw.data(), &fValue, 4);
    if (width.wTag == kFloat && width.wBits == 64) std::memcpy(raw.data(), &dValue, 8);
    bytes.insert(bytes.end(), raw.begin(), raw.begin() + width.wBits / 8);
  }
  return bytes;
}

// The value of a stored sample, with full scale 1.
float ValueOf(const S_Width& width, const std::uint8_t* pbySample) {
  if (width.wTag == kFloat && width.wBits == 64) {
    double dValue = 0;
    std::memcpy(&dValue, pbySample, 8);
    return static_cast<float>(dValue);
  }
  std::uint32_t dwRaw = 0;
  std::memcpy(&dwRaw, pbySample, width.wBits / 8U);
  if (width.wTag == kFloat) {
    float fValue = 0;
    std::memcpy(&fValue, &dwRaw, 4);
    return fValue;
  }
  if (width.wBits == 8) return (static_cast<float>(dwRaw) - 128.0F) / 128.0F;
  const auto nHigh = static_cast<std::int32_t>(dwRaw << (32 - width.wBits));
  return static_cast<float>(static_cast<double>(nHigh) / 2147483648.0);
}

C_Bytes WavOf(const S_Width& width, std::uint16_t wChannels, const C_Bytes& samples) {
  C_Bytes format = FmtBytes(width.wTag, wChannels, 44100, width.wBits);
  if (width.wValidBits != 0) {
    const C_Bytes guid = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
    format[0] = 0xFE;
    format[1] = 0xFF;
    format = Join({format, U16(22), U16(width.wValidBits), U32(0), U16(width.wTag), guid});
  }
  return C_RiffBytes("WAVE").Chunk("fmt ", format).Chunk("data", samples).Take();
}

class WidthsTest : public testing::TestWithParam<S_Width> {
 protected:
  // What the file library itself reads, interleaved.
  std::vector<float> ReadElsewhere(const std::string& strPath, std::uint16_t wChannels) {
    SF_INFO info{};
    SNDFILE* pSound = sf_open(strPath.c_str(), SFM_READ, &info);
    EXPECT_EQ(info.channels, wChannels);
    std::vector<float> samples(kFrames * wChannels);
    EXPECT_EQ(sf_readf_float(pSound, samples.data(), info.frames),
              static_cast<sf_count_t>(kFrames));
    EXPECT_EQ(sf_close(pSound), 0);
    return samples;
  }
  void ExpectHeard(std::uint16_t wChannels) {
    const S_Width& width = GetParam();
    const C_Bytes samples = SamplesOf(width, kFrames * wChannels);
    const std::string strPath = m_folder.Write("a.wav", WavOf(width, wChannels, samples));
    C_OfflinePlayer player;
    player.UseFile(strPath);
    ASSERT_EQ(PacketCount(player.File()), kFrames);
    player.Play(kFrames);
    const auto sides = player.Render(kFrames + 400);
    const auto elsewhere = ReadElsewhere(strPath, wChannels);
    for (std::size_t n = 0; n < kFrames; ++n) {
      for (std::size_t i = 0; i < 2; ++i) {
        // A single channel is heard on both sides. Of more than two channels, only the first two
        // are heard.
        const std::size_t nSample = n * wChannels + std::min<std::size_t>(i, wChannels - 1U);
        const float fWanted = ValueOf(width, &samples[nSample * width.wBits / 8U]);
        ASSERT_EQ(sides.at(i)[n], fWanted) << wChannels << " channels, frame " << n;
        ASSERT_EQ(sides.at(i)[n], elsewhere[nSample]) << wChannels << " channels, frame " << n;
      }
    }
    for (const auto& side : sides) EXPECT_TRUE(IsSilent(side.begin() + kFrames, side.end()));
  }
  C_TempFolder m_folder;
};

TEST_P(WidthsTest, EverySampleOfTheFirstTwoChannels_IsHeard) {
  for (std::uint16_t wChannels = 1; wChannels <= 8; ++wChannels) ExpectHeard(wChannels);
}

INSTANTIATE_TEST_SUITE_P(
    Widths, WidthsTest,
    testing::Values(
        S_Width{"Pcm8", kPcm, 8, 0}, S_Width{"Pcm16", kPcm, 16, 0}, S_Width{"Pcm24", kPcm, 24, 0},
        S_Width{"Pcm32", kPcm, 32, 0}, S_Width{"Float", kFloat, 32, 0},
        S_Width{"Double", kFloat, 64, 0}, S_Width{"Extensible8", kPcm, 8, 8},
        S_Width{"Extensible16", kPcm, 16, 16}, S_Width{"Extensible12In16", kPcm, 16, 12},
        S_Width{"Extensible24", kPcm, 24, 24}, S_Width{"Extensible20In24", kPcm, 24, 20},
        S_Width{"Extensible24In32", kPcm, 32, 24}, S_Width{"Extensible32", kPcm, 32, 32},
        S_Width{"ExtensibleFloat", kFloat, 32, 32}, S_Width{"ExtensibleDouble", kFloat, 64, 64}),
    [](const auto& tested) { return tested.param.pszName; });

}  // namespace
