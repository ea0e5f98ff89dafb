// SPDX-License-Identifier: Apache-2.0
#include "sound/SampleChanges.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FolderTest.h"
#include "VoxtoolSounds.h"
#include "sound/PeakMeter.h"
#include "sound/SampleSum.h"
#include "sound/SilenceFinder.h"

namespace tool {
namespace {

// Keeps what it takes.
class C_Kept final : public I_SampleSink {
 public:
  void Take(std::span<const std::int16_t> samples) override { Keep(shorts, samples); }
  void Take(std::span<const std::int32_t> samples) override { Keep(longs, samples); }
  void Take(std::span<const float> samples) override { Keep(floats, samples); }

  std::vector<std::int16_t> shorts;
  std::vector<std::int32_t> longs;
  std::vector<float> floats;

 private:
  template <typename Sample>
  static void Keep(std::vector<Sample>& kept, std::span<const Sample> samples) {
    kept.insert(kept.end(), samples.begin(), samples.end());
  }
};

class SampleChangesTest : public C_FolderTest {
 protected:
  template <typename Sample>
  C_SoundInputPtr Sound(voxplay_codec eCodec, std::uint32_t dwBits, std::uint32_t dwRate,
                        std::uint32_t dwChannels, const std::vector<Sample>& samples) {
    const std::string strPath = Path("sound.wav");
    test::WriteSound(strPath, FormatOf(VOXPLAY_CONTAINER_WAV, eCodec, dwBits, dwRate, dwChannels),
                     samples);
    return OpenSound(strPath);
  }
  C_SoundInputPtr Sound16(const std::vector<std::int16_t>& samples, std::uint32_t dwChannels = 1) {
    return Sound(VOXPLAY_CODEC_PCM, 16, 16000, dwChannels, samples);
  }
};

TEST_F(SampleChangesTest, NothingToChange_KeepsTheTypeThatHoldsTheSamples) {
  C_Kept kept;
  const std::vector<std::int16_t> shorts = {-32768, 32767, 5, -1};
  EXPECT_EQ(ChangeSamples(*Sound16(shorts), {}, kept), 4U);
  EXPECT_EQ(kept.shorts, shorts);
  const std::vector<std::int32_t> longs = {INT32_MIN, INT32_MAX, 1, -1};
  ChangeSamples(*Sound(VOXPLAY_CODEC_PCM, 32, 16000, 1, longs), {}, kept);
  EXPECT_EQ(kept.longs, longs);
  const std::vector<float> floats = {1.5F, -0.1F, 1e-30F};
  ChangeSamples(*Sound(VOXPLAY_CODEC_FLOAT, 32, 16000, 1, floats), {}, kept);
  EXPECT_EQ(kept.floats, floats);
}

TEST_F(SampleChangesTest, OneChannel_IsTakenAsItIs) {
  C_Kept kept;
  S_SampleChanges changes;
  changes.dwChannel = 1;
  ChangeSamples(*Sound16({1, 2, 3, 4, 5, 6}, 2), changes, kept);
  EXPECT_EQ(kept.shorts, (std::vector<std::int16_t>{2, 4, 6}));
}

TEST_F(SampleChangesTest, Mono_IsTheMeanOfAllChannels) {
  C_Kept kept;
  S_SampleChanges changes;
  changes.bMono = true;
  ChangeSamples(*Sound16({300, 0, 600, -32768, -32768, -32768}, 3), changes, kept);
  EXPECT_EQ(kept.floats, (std::vector<float>{300.0F / 32768, -1.0F}));
}

TEST_F(SampleChangesTest, MonoOfOneChannel_ChangesNothing) {
  C_Kept kept;
  S_SampleChanges changes;
  changes.bMono = true;
  ChangeSamples(*Sound16({7, 8}), changes, kept);
  EXPECT_EQ(kept.shorts, (std::vector<std::int16_t>{7, 8}));
}

TEST_F(SampleChangesTest, Gain_MultipliesAllSamples) {
  C_Kept kept;
  S_SampleChanges changes;
  changes.dGain = GainFactor(20.0);
  ChangeSamples(*Sound16({1024, -2048}), changes, kept);
  EXPECT_EQ(kept.floats, (std::vector<float>{0.3125F, -0.625F}));
}

TEST_F(SampleChangesTest, FramesRead_AreToldAndReturned) {
  C_Kept kept;
  S_SampleChanges changes;
  changes.dwRate = 8000;
  std::uint64_t qwTold = 0;
  const auto input = Sound16(PublicSamples(30001, 2), 2);
  EXPECT_EQ(ChangedFrames(input->Info(), changes), 15001U);
  const auto tell = [&qwTold](std::uint64_t qwFrames) { qwTold = qwFrames; };
  EXPECT_EQ(ChangeSamples(*input, changes, kept, tell), 30001U);
  EXPECT_EQ(qwTold, 30001U);
  EXPECT_EQ(kept.floats.size(), 2U * 15001U);
}

TEST_F(SampleChangesTest, Peak_IsThatOfTheLoudestSample) {
  C_PeakMeter meter;
  ChangeSamples(*Sound16({100, -16384, 8000}), {}, meter);
  EXPECT_EQ(meter.Peak(), 0.5);
}

TEST_F(SampleChangesTest, Sum_IsTheSameWhateverTheTypeOfTheSamples) {
  const auto samples = PublicSamples(5000);
  C_SummedSound shorts(Sound16(samples));
  C_SummedSound floats(Sound16(samples));
  C_Kept kept;
  S_SampleChanges changes;
  changes.dGain = 0.5;
  ChangeSamples(shorts, {}, kept);
  ChangeSamples(floats, changes, kept);
  EXPECT_EQ(shorts.Sum(), floats.Sum());
  const std::uint64_t qwSum = floats.Sum();
  floats.Seek(0);
  EXPECT_NE(floats.Sum(), qwSum);
  ChangeSamples(floats, {}, kept);
  EXPECT_EQ(floats.Sum(), qwSum);
  C_SummedSound other(Sound16(PublicSamples(4999)));
  ChangeSamples(other, {}, kept);
  EXPECT_NE(other.Sum(), qwSum);
}

TEST(SilenceFinderTest, LongEnoughQuiet_IsFoundAndPassedOn) {
  C_Kept kept;
  C_SilenceFinder finder(0.125, 3, 2, kept);
  const std::vector<float> first = {0, 0, 0, 0.125F, 0, 0, 0, 0.5F, 0, 0, 0};
  finder.Take(std::span(first).first(10));
  const std::vector<float> second = {0, 0, -0.2F, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  finder.Take(std::span<const float>(second));
  const auto found = finder.End();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].first, 0U);
  EXPECT_EQ(found[0].count, 3U);
  EXPECT_EQ(found[1].first, 7U);
  EXPECT_EQ(found[1].count, 4U);
  EXPECT_EQ(kept.floats.size(), 22U);
}

}  // namespace
}  // namespace tool
