// SPDX-License-Identifier: Apache-2.0
//
// Compares streams of PCM with what another reader of sound files makes of the same bytes.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>

#include "RiffBytes.h"
#include "Sources.h"
#include "TempFolder.h"
#include "stream/PcmStream.h"

namespace api::test {
namespace {

struct S_SndClose {
  void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using C_SndPtr = std::unique_ptr<SNDFILE, S_SndClose>;

struct S_Kind {
  S_PcmFormat format;
  int nSubFormat = 0;
};
void PrintTo(const S_Kind& kind, std::ostream* pStream) {
  *pStream << kind.format.wChannels << " channels of " << kind.format.wBits << " bits";
}

constexpr std::size_t kFrames = 6000;

class PcmOracle : public testing::TestWithParam<S_Kind> {
 protected:
  [[nodiscard]] static std::size_t SampleCount() { return kFrames * GetParam().format.wChannels; }
  C_SndPtr OpenTheirs(const C_Bytes& bytes) {
    SF_INFO info{};
    info.samplerate = 8000;
    info.channels = GetParam().format.wChannels;
    info.format = SF_FORMAT_RAW | GetParam().nSubFormat | SF_ENDIAN_LITTLE;
    return C_SndPtr(sf_open(m_folder.Write("sound", bytes).c_str(), SFM_READ, &info));
  }
  template <typename Sample>
  static std::vector<Sample> Ours(const C_Bytes& bytes) {
    C_MemorySourceForTests source(bytes);
    const S_PcmRange range = {{0, bytes.size()}, bytes.size(), false};
    return ReadRest<Sample>(*OpenPcmStream(source, range, GetParam().format));
  }

  C_TempFolder m_folder;
};
class IntegerOracle : public PcmOracle {
 protected:
  [[nodiscard]] static C_Bytes Sound() {
    return Noise(SampleCount() * (GetParam().format.wBits / 8U));
  }
};
class RealOracle : public PcmOracle {
 protected:
  // Sines of full scale: the first sample is 1.
  [[nodiscard]] static double Value(std::size_t nSample) {
    return std::cos(0.37 * static_cast<double>(nSample));
  }
  [[nodiscard]] static C_Bytes Sound() {
    C_Bytes bytes;
    for (std::size_t i = 0; i < SampleCount(); ++i) {
      const bool bDouble = GetParam().format.wBits == 64;
      const std::uint64_t qwBits = bDouble
                                       ? std::bit_cast<std::uint64_t>(Value(i))
                                       : std::bit_cast<std::uint32_t>(static_cast<float>(Value(i)));
      for (unsigned int k = 0; k < GetParam().format.wBits; k += 8) {
        bytes.push_back(static_cast<std::uint8_t>(qwBits >> k));
      }
    }
    return bytes;
  }
};

INSTANTIATE_TEST_SUITE_P(Kinds, IntegerOracle,
                         testing::Values(S_Kind{{1, 8, false}, SF_FORMAT_PCM_U8},
                                         S_Kind{{2, 8, false}, SF_FORMAT_PCM_U8},
                                         S_Kind{{1, 16, false}, SF_FORMAT_PCM_16},
                                         S_Kind{{8, 16, false}, SF_FORMAT_PCM_16},
                                         S_Kind{{1, 24, false}, SF_FORMAT_PCM_24},
                                         S_Kind{{3, 24, false}, SF_FORMAT_PCM_24},
                                         S_Kind{{1, 32, false}, SF_FORMAT_PCM_32},
                                         S_Kind{{2, 32, false}, SF_FORMAT_PCM_32}));
INSTANTIATE_TEST_SUITE_P(Kinds, RealOracle,
                         testing::Values(S_Kind{{1, 32, true}, SF_FORMAT_FLOAT},
                                         S_Kind{{2, 32, true}, SF_FORMAT_FLOAT},
                                         S_Kind{{1, 64, true}, SF_FORMAT_DOUBLE},
                                         S_Kind{{3, 64, true}, SF_FORMAT_DOUBLE}));

}  // namespace

TEST_P(IntegerOracle, Shorts_AreTheSame) {
  const C_Bytes bytes = Sound();
  const C_SndPtr theirs = OpenTheirs(bytes);
  std::vector<std::int16_t> samples(SampleCount());
  ASSERT_EQ(sf_readf_short(theirs.get(), samples.data(), kFrames), sf_count_t{kFrames});
  EXPECT_EQ(Ours<std::int16_t>(bytes), samples);
}

TEST_P(IntegerOracle, Ints_AreTheSame) {
  const C_Bytes bytes = Sound();
  const C_SndPtr theirs = OpenTheirs(bytes);
  std::vector<std::int32_t> samples(SampleCount());
  ASSERT_EQ(sf_readf_int(theirs.get(), samples.data(), kFrames), sf_count_t{kFrames});
  EXPECT_EQ(Ours<std::int32_t>(bytes), samples);
}

TEST_P(IntegerOracle, Floats_AreTheSame) {
  const C_Bytes bytes = Sound();
  const C_SndPtr theirs = OpenTheirs(bytes);
  std::vector<float> samples(SampleCount());
  ASSERT_EQ(sf_readf_float(theirs.get(), samples.data(), kFrames), sf_count_t{kFrames});
  EXPECT_EQ(Ours<float>(bytes), samples);
}

TEST_P(RealOracle, Floats_AreTheSame) {
  const C_Bytes bytes = Sound();
  const C_SndPtr theirs = OpenTheirs(bytes);
  std::vector<float> samples(SampleCount());
  ASSERT_EQ(sf_readf_float(theirs.get(), samples.data(), kFrames), sf_count_t{kFrames});
  EXPECT_EQ(Ours<float>(bytes), samples);
}

// Ours are full scale at 1; theirs at the peak of the sound, a little below full scale, and cut
// off.
TEST_P(RealOracle, RealsAsShorts_AreOurRoundingAndTwoStepsFromTheirScale) {
  const C_Bytes bytes = Sound();
  const C_SndPtr theirs = OpenTheirs(bytes);
  sf_command(theirs.get(), SFC_SET_SCALE_FLOAT_INT_READ, nullptr, SF_TRUE);
  std::vector<std::int16_t> samples(SampleCount());
  ASSERT_EQ(sf_readf_short(theirs.get(), samples.data(), kFrames), sf_count_t{kFrames});
  const auto ours = Ours<std::int16_t>(bytes);
  EXPECT_EQ(ours.front(), 32767);
  for (std::size_t i = 0; i < ours.size(); ++i) ASSERT_NEAR(ours[i], samples[i], 2) << i;
  const auto floats = Ours<float>(bytes);
  for (std::size_t i = 0; i < ours.size(); ++i) {
    ASSERT_NEAR(ours[i], std::min(floats[i] * 32768.0F, 32767.0F), 0.502F) << i;
  }
}

TEST_P(RealOracle, RealsAsInts_AreTwoStepsOf16BitsFromTheirScale) {
  const C_Bytes bytes = Sound();
  const C_SndPtr theirs = OpenTheirs(bytes);
  sf_command(theirs.get(), SFC_SET_SCALE_FLOAT_INT_READ, nullptr, SF_TRUE);
  std::vector<std::int32_t> samples(SampleCount());
  ASSERT_EQ(sf_readf_int(theirs.get(), samples.data(), kFrames), sf_count_t{kFrames});
  const auto ours = Ours<std::int32_t>(bytes);
  EXPECT_EQ(ours.front(), 2147483647);
  for (std::size_t i = 0; i < ours.size(); ++i) ASSERT_NEAR(ours[i], samples[i], 131072) << i;
}

}  // namespace api::test
