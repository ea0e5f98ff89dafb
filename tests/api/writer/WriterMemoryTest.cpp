// SPDX-License-Identifier: Apache-2.0
//
// The memory that writing takes does not grow with the sound.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "FolderTest.h"
#include "LiveMemory.h"
#include "writer/Writer.h"

namespace {

constexpr std::size_t kMost = std::size_t{8} << 20;

class WriterMemory : public C_FolderTest {
 protected:
  // The most memory held while an hour of sound is written; its first and last parts are loud.
  std::size_t MostOfAnHour(voxplay_format format) {
    format.channels = 1;
    const std::uint64_t qwFrames = std::uint64_t{3600} * format.sample_rate;
    std::array<std::int16_t, 4096> piece{};
    const std::size_t cbBefore = LiveMemory();
    ResetMostMemory();
    const auto writer = api::C_Writer::Open(api::OpenFileTarget(Path("a").c_str()), format);
    std::uint32_t dwState = 1;
    for (std::uint64_t qwAt = 0; qwAt < qwFrames; qwAt += piece.size()) {
      const bool bLoud = qwAt < 200000 || qwAt + 200000 > qwFrames;
      for (std::int16_t& nSample : piece) {
        dwState = dwState * 1664525U + 1013904223U;
        nSample = bLoud ? static_cast<std::int16_t>(dwState >> 18) : std::int16_t{0};
      }
      writer->Write(std::span<const std::int16_t>(piece));
    }
    writer->Finish();
    return MostMemory() - cbBefore;
  }
};

TEST_F(WriterMemory, AnHourOfHeron_TakesLessThan8MiB) {
  voxplay_format format{};
  format.container = VOXPLAY_CONTAINER_SP;
  format.codec = VOXPLAY_CODEC_HERON;
  format.sample_rate = 16000;
  format.bits_per_sample = 4;
  EXPECT_LT(MostOfAnHour(format), kMost);
}

TEST_F(WriterMemory, AnHourOfKestrelInVef_TakesLessThan1MiB) {
  voxplay_format format{};
  format.container = VOXPLAY_CONTAINER_VEF;
  format.codec = VOXPLAY_CODEC_KESTREL;
  format.sample_rate = 16000;
  EXPECT_LT(MostOfAnHour(format), kMost / 8);
}

TEST_F(WriterMemory, AnHourOfWav_TakesLessThan1MiB) {
  voxplay_format format{};
  format.container = VOXPLAY_CONTAINER_WAV;
  format.codec = VOXPLAY_CODEC_PCM;
  format.sample_rate = 16000;
  format.bits_per_sample = 24;
  EXPECT_LT(MostOfAnHour(format), kMost / 8);
}

}  // namespace
