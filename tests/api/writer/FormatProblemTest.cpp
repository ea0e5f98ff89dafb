// SPDX-License-Identifier: Apache-2.0
#include "writer/FormatProblem.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <tuple>

#include "WriterSupport.h"

namespace {

using api::FormatProblem;
using api::test::HeronFormat;
using api::test::KestrelFormat;
using api::test::PcmFormat;

TEST(FormatProblem, Table_HoldsForEveryContainerCodecAndWidth) {
  const std::set<std::uint32_t> pcm = {8, 16, 24, 32};
  const std::set<std::uint32_t> heron = {2, 3, 4, 5, 6};
  const std::map<std::pair<std::uint32_t, std::uint32_t>, std::set<std::uint32_t>> allowed = {
      {{VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM}, pcm},
      {{VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_FLOAT}, {32}},
      {{VOXPLAY_CONTAINER_VEMD, VOXPLAY_CODEC_PCM}, pcm},
      {{VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM}, pcm},
      {{VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL}, {0}},
      {{VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_HERON}, heron},
      {{VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL}, {0}},
      {{VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON}, {4, 5, 6}},
      {{VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_KESTREL}, {0}},
      {{VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON}, heron},
      {{VOXPLAY_CONTAINER_BARE, VOXPLAY_CODEC_KESTREL}, {0}},
      {{VOXPLAY_CONTAINER_BARE, VOXPLAY_CODEC_HERON}, heron}};
  for (std::uint32_t dwContainer = 0; dwContainer <= 7; ++dwContainer) {
    for (std::uint32_t dwCodec = 0; dwCodec <= 33; ++dwCodec) {
      for (std::uint32_t dwBits = 0; dwBits <= 64; ++dwBits) {
        voxplay_format format = PcmFormat(dwContainer, dwBits);
        format.codec = dwCodec;
        const auto found = allowed.find({dwContainer, dwCodec});
        const bool bAllowed = found != allowed.end() && found->second.contains(dwBits);
        EXPECT_EQ(FormatProblem(format).empty(), bAllowed)
            << dwContainer << ", " << dwCodec << ", " << dwBits;
      }
    }
  }
}

TEST(FormatProblem, Sentences_SayWhatIsWrong) {
  EXPECT_EQ(FormatProblem(PcmFormat(99, 16)), "format: 99 is no container");
  EXPECT_EQ(FormatProblem(PcmFormat(VOXPLAY_CONTAINER_SP, 16)),
            "format: an SP header is not written with this codec");
  EXPECT_EQ(FormatProblem(PcmFormat(VOXPLAY_CONTAINER_WAV, 12)),
            "format: PCM is written with 8, 16, 24 or 32 bits per sample");
  EXPECT_EQ(FormatProblem(HeronFormat(VOXPLAY_CONTAINER_SP, 3)),
            "format: Heron of 2 or 3 bits would not be recognised after an SP header");
  EXPECT_EQ(FormatProblem(HeronFormat(VOXPLAY_CONTAINER_VEF, 7)),
            "format: Heron has 2 to 6 bits per sample");
}

TEST(FormatProblem, Channels_Are1To64) {
  for (const std::uint32_t dwChannels : {0U, 65U, 0x10001U}) {
    EXPECT_EQ(FormatProblem(PcmFormat(VOXPLAY_CONTAINER_WAV, 16, dwChannels)),
              "format: there are 1 to 64 channels");
  }
  EXPECT_EQ(FormatProblem(PcmFormat(VOXPLAY_CONTAINER_WAV, 32, 64)), "");
}

TEST(FormatProblem, BitRates_AreThoseOfKestrel) {
  for (const std::uint32_t dwRate :
       {0U, 7200U, 9600U, 12000U, 14400U, 16000U, 20000U, 24000U, 32000U}) {
    EXPECT_EQ(FormatProblem(KestrelFormat(VOXPLAY_CONTAINER_SP, dwRate)), "") << dwRate;
  }
  for (const std::uint32_t dwRate : {4800U, 8000U, 15999U, 32001U}) {
    EXPECT_EQ(FormatProblem(KestrelFormat(VOXPLAY_CONTAINER_SP, dwRate)),
              "format: Kestrel has bit rates of 7200, 9600, 12000, 14400, 16000, 20000, 24000 or "
              "32000");
  }
  voxplay_format format = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  format.bit_rate = 16000;
  EXPECT_EQ(FormatProblem(format), "format: only Kestrel has a bit rate");
}

TEST(FormatProblem, SampleRates_FitTheirHeadersAndCodecs) {
  const auto at = [](voxplay_format format, std::uint32_t dwRate) {
    format.sample_rate = dwRate;
    return FormatProblem(format);
  };
  EXPECT_EQ(at(PcmFormat(VOXPLAY_CONTAINER_WAV, 16), 0), "format: there is no sample rate");
  EXPECT_EQ(at(PcmFormat(VOXPLAY_CONTAINER_WAV, 8), 0xFFFFFFFF), "");
  EXPECT_EQ(at(PcmFormat(VOXPLAY_CONTAINER_WAV, 16), 0x7FFFFFFF), "");
  EXPECT_EQ(at(PcmFormat(VOXPLAY_CONTAINER_WAV, 16), 0x80000000),
            "format: a second would have 4 GiB or more");
  EXPECT_EQ(at(KestrelFormat(VOXPLAY_CONTAINER_SP), 0xFFFFFFFF), "");
  EXPECT_EQ(at(KestrelFormat(VOXPLAY_CONTAINER_HEAD), 65535), "");
  EXPECT_EQ(at(KestrelFormat(VOXPLAY_CONTAINER_HEAD), 65536),
            "format: a codec head with a stream takes sample rates of up to 65535 Hz");
  EXPECT_EQ(at(KestrelFormat(VOXPLAY_CONTAINER_VEF), 65536),
            "format: VEF with a stream takes sample rates of up to 65535 Hz");
  EXPECT_EQ(at(PcmFormat(VOXPLAY_CONTAINER_VEF, 16), 65536), "");
  EXPECT_EQ(at(HeronFormat(VOXPLAY_CONTAINER_BARE, 2), 3999),
            "format: Heron takes sample rates of 4000 to 48000 Hz");
  EXPECT_EQ(at(HeronFormat(VOXPLAY_CONTAINER_BARE, 2), 48001),
            "format: Heron takes sample rates of 4000 to 48000 Hz");
}

TEST(FormatProblem, FlagsAndReservedMembers_MustBeKnown) {
  voxplay_format format = PcmFormat(VOXPLAY_CONTAINER_WAV, 16);
  format.flags = VOXPLAY_WRITE_RF64;
  EXPECT_EQ(FormatProblem(format), "");
  format.container = VOXPLAY_CONTAINER_VEMD;
  EXPECT_EQ(FormatProblem(format), "format: only WAV can become RF64");
  format.flags = 2;
  EXPECT_EQ(FormatProblem(format), "format: a flag is not known");
  format.flags = 0;
  format.reserved = 1;
  EXPECT_EQ(FormatProblem(format), "format: the reserved member is not 0");
}

}  // namespace
