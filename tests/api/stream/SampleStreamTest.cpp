// SPDX-License-Identifier: Apache-2.0
//
// What all streams of 16-bit samples share.
#include <gtest/gtest.h>

#include "Sources.h"

namespace api::test {
namespace {

// A stereo sound of 10,000 frames, in which sample n is n. Reading frame 4,096 fails once.
class C_Counting final : public C_SampleStream16 {
 public:
  [[nodiscard]] std::size_t ChannelCount() const noexcept override { return 2; }
  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept override { return 10'000; }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return 0; }
  [[nodiscard]] std::uint64_t Position() const noexcept override { return m_nPosition; }

  using C_SampleStream16::Read;
  std::size_t Read(std::span<std::int16_t> samples) override {
    std::size_t nFrames = std::min(samples.size() / 2, 10'000 - m_nPosition);
    if (m_bFails && m_nPosition <= 4096) nFrames = std::min(nFrames, 4096 - m_nPosition);
    if (m_bFails && nFrames == 0 && m_nPosition == 4096) {
      m_bFails = false;
      throw C_Failure(VOXPLAY_CANNOT_READ, "bad sector");
    }
    for (std::size_t i = 0; i < nFrames * 2; ++i) {
      samples[i] = static_cast<std::int16_t>(m_nPosition * 2 + i);
    }
    m_nPosition += nFrames;
    return nFrames;
  }
  void Seek(std::uint64_t qwFrame) override { m_nPosition = static_cast<std::size_t>(qwFrame); }

 private:
  std::size_t m_nPosition = 0;
  bool m_bFails = true;
};

}  // namespace

TEST(SampleStream, FailureAfterSomeFrames_IsThrownByTheNextCall) {
  C_Counting stream;
  const auto samples = ReadFrames<std::int32_t>(stream, 9000);
  ASSERT_EQ(samples.size(), 8192U);
  EXPECT_EQ(samples.back(), 8191 * 65536);
  EXPECT_EQ(TextOf([&] { ReadFrames<std::int32_t>(stream, 9000); }), "bad sector");
  EXPECT_EQ(ReadFrames<float>(stream, 1), (std::vector<float>{0.25F, 8193 / 32768.0F}));
}

TEST(SampleStream, SmallReads_MeetTheFailureAtItsPlace) {
  C_Counting stream;
  std::size_t nFrames = 0;
  EXPECT_EQ(TextOf([&] {
              for (int i = 0; i < 10; ++i) nFrames += ReadFrames<float>(stream, 1000).size() / 2;
            }),
            "bad sector");
  EXPECT_EQ(nFrames, 4096U);
}

TEST(SampleStream, SeekAfterAFailure_ForgetsIt) {
  C_Counting stream;
  EXPECT_EQ(ReadFrames<float>(stream, 9000).size(), 8192U);
  stream.Seek(5);
  EXPECT_EQ(ReadFrames<std::int32_t>(stream, 1), (std::vector<std::int32_t>{655'360, 720'896}));
  stream.Seek(4096);
  EXPECT_EQ(ReadRest<float>(stream).size(), 11'808U);
}

TEST(SampleStream, RoomForNoFrame_GivesNone) {
  C_Counting stream;
  EXPECT_EQ(ReadFrames<float>(stream, 0).size(), 0U);
  std::vector<std::int32_t> half(1);
  EXPECT_EQ(stream.C_SampleStream16::Read(std::span(half)), 0U);
  EXPECT_EQ(stream.Position(), 0U);
}

}  // namespace api::test
