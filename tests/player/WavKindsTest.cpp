// SPDX-License-Identifier: Apache-2.0
//
// WAV files of every width, rate and number of channels, played as they are by the real program.
#include <array>

#include "FilesFixture.h"

namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;

struct S_Kind {
  const char* pszName;
  std::uint16_t wTag;
  std::uint16_t wBits;
  bool bExtensible;
};

constexpr std::array<S_Kind, 11> kKinds = {{{"8", kPcm, 8, false},
                                            {"16", kPcm, 16, false},
                                            {"24", kPcm, 24, false},
                                            {"32", kPcm, 32, false},
                                            {"float", kFloat, 32, false},
                                            {"double", kFloat, 64, false},
                                            {"x8", kPcm, 8, true},
                                            {"x16", kPcm, 16, true},
                                            {"x24", kPcm, 24, true},
                                            {"x32", kPcm, 32, true},
                                            {"xfloat", kFloat, 32, true}}};
constexpr std::array<std::uint32_t, 8> kRates = {8000,  11025, 16000, 22050,
                                                 32000, 44100, 48000, 96000};

// A WAV file with nFrames frames of silence.
C_Bytes SilentWav(const S_Kind& kind, std::uint32_t dwRate, std::uint16_t wChannels,
                  std::size_t nFrames) {
  const auto wAlign = static_cast<std::uint16_t>(wChannels * kind.wBits / 8);
  const std::uint16_t wTag = kind.bExtensible ? std::uint16_t{0xFFFE} : kind.wTag;
  C_Bytes format = Join(
      {U16(wTag), U16(wChannels), U32(dwRate), U32(dwRate * wAlign), U16(wAlign), U16(kind.wBits)});
  if (kind.bExtensible) {
    const C_Bytes guid = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
    format = Join({format, U16(22), U16(kind.wBits), U32(0), U16(kind.wTag), guid});
  }
  const C_Bytes data(nFrames * wAlign, kind.wBits == 8 ? std::uint8_t{0x80} : std::uint8_t{0});
  return C_RiffBytes("WAVE").Chunk("fmt ", format).Chunk("data", data).Take();
}

class WavKinds : public C_FilesTest {
 protected:
  // Plays every fourth rate, each with a different number of channels, all at the same time. 1600
  // frames count as 0.1 s.
  void PlayAtRates(const S_Kind& kind, std::size_t nFirst) {
    std::vector<std::future<S_Run>> runs;
    for (std::size_t i = nFirst % 4; i < kRates.size(); i += 4) {
      const auto wChannels = static_cast<std::uint16_t>((nFirst * 3 + i) % 8 + 1);
      const std::string strName = std::string(kind.pszName) + "-" + std::to_string(i) + ".wav";
      const C_Bytes wav = SilentWav(kind, kRates.at(i), wChannels, 1600);
      runs.push_back(Beside(m_folder.Write(strName, wav), "0"));
    }
    for (auto& play : runs) {
      const S_Run run = play.get();
      EXPECT_EQ(run.strOut, "file duration: 0.100000 secs\nPlaying...Finished\n") << kind.pszName;
      EXPECT_EQ(run.nExit, 0);
      EXPECT_GE(run.dSeconds, 0.1);
    }
  }
  C_TempFolder m_folder;
};

TEST_F(WavKinds, EveryWidthRateAndNumberOfChannels_IsPlayedAsItIs) {
  for (std::size_t i = 0; i < kKinds.size(); ++i) PlayAtRates(kKinds.at(i), i);
  EXPECT_EQ(m_temp.NewFiles(), std::vector<std::string>{});
}

}  // namespace
