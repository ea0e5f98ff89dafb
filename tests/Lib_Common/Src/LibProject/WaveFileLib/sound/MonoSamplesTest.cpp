// SPDX-License-Identifier: Apache-2.0
//
// Samples that are converted piece by piece are those of a sound that is converted as a whole.
#include "sound/MonoSamples.h"

#include <gtest/gtest.h>

#include <random>

#include "TestSound.h"
#include "sound/WavData.h"

namespace {

using Samples = std::vector<short>;
using Bytes = std::vector<std::uint8_t>;

struct S_Shape {
  unsigned short wChannels = 1;
  unsigned short wBits = 16;
  unsigned short wStoreBits = 16;
  bool bSigned = true;
};

const S_Shape kShapes[] = {
    {1, 16, 16, true}, {1, 16, 16, false}, {1, 12, 16, true}, {1, 8, 8, false},
    {1, 8, 8, true},   {1, 24, 32, true},  {1, 32, 32, true}, {1, 32, 32, false},
    {2, 16, 16, true}, {2, 16, 16, false}, {2, 8, 8, false},  {2, 12, 16, true},
    {2, 32, 32, true}, {3, 16, 16, true},  {4, 8, 8, false},  {5, 16, 16, true},
};

// Random bytes; every third run of samples is near zero, so that neighbours do not only clip.
Bytes RandomPcm(std::size_t cb) {
  std::mt19937 random(static_cast<unsigned int>(cb));
  Bytes pcm(cb);
  for (std::size_t i = 0; i < cb; ++i) {
    pcm[i] = static_cast<std::uint8_t>(i / 96 % 3 == 0 ? random() % 2 * 255 : random());
  }
  return pcm;
}

void SetFormat(C_WavData& sound, const S_Shape& shape, std::size_t cbLength) {
  sound.SetWavInfoData(16000, static_cast<unsigned int>(cbLength), shape.wChannels, shape.wBits,
                       shape.wStoreBits, shape.bSigned);
}

Samples Whole(I_WavData& sound) {
  const C_WavDataPtr mono(sound.CreateBitsConvertedData(16, 16, true, true));
  if (!mono) return {};
  mono->ConvertToMono();
  return SamplesOf(mono.get());
}

// Reads more than there is, in parts of all lengths.
Samples InParts(C_MonoSamples& mono) {
  constexpr std::size_t kMore = 700;
  std::mt19937 random(5);
  Samples samples(mono.Count() + kMore, 1);
  std::span<short> rest(samples);
  while (!rest.empty()) {
    const auto part = rest.first(std::min<std::size_t>(1 + random() % 900, rest.size()));
    mono.Read(part);
    rest = rest.subspan(part.size());
  }
  for (std::size_t i = mono.Count(); i < samples.size(); ++i) EXPECT_EQ(samples[i], 0) << i;
  samples.resize(mono.Count());
  return samples;
}

void ExpectSame(C_WavData& sound) {
  auto mono = C_MonoSamples::Of(sound);
  ASSERT_TRUE(mono);
  const Samples whole = Whole(sound);
  EXPECT_EQ(mono->Count(), whole.size());
  EXPECT_EQ(InParts(*mono), whole);
}

TEST(MonoSamples, SoundsOfAllShapesAndLengths_AreConvertedAsAWhole) {
  for (const S_Shape& shape : kShapes) {
    const std::size_t cbFrame = std::size_t{shape.wStoreBits} / 8 * shape.wChannels;
    for (const std::size_t nFrames : {0U, 1U, 2U, 3U, 4095U, 4096U, 4097U, 8192U, 10000U}) {
      for (const std::size_t cbMore : {std::size_t{0}, cbFrame - 1}) {
        const Bytes pcm = RandomPcm(nFrames * cbFrame + cbMore);
        C_WavData sound;
        sound.SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
        SetFormat(sound, shape, pcm.size());
        SCOPED_TRACE(testing::Message() << shape.wChannels << " channels of " << shape.wBits << "/"
                                        << shape.wStoreBits << " bits, " << pcm.size() << " bytes");
        ExpectSame(sound);
      }
    }
  }
}

TEST(MonoSamples, FormatThatClaimsMoreOrLess_CountsWhatIsHeld) {
  for (const S_Shape& shape : kShapes) {
    Bytes pcm = RandomPcm(9600);
    C_WavData sound;
    sound.AttachBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
    for (const std::size_t cbClaimed : {96U, 4800U, 9599U, 9600U, 20000U}) {
      SetFormat(sound, shape, cbClaimed);
      SCOPED_TRACE(testing::Message() << shape.wChannels << " channels, claims " << cbClaimed);
      ExpectSame(sound);
    }
    sound.DetachBuffer();
  }
}

TEST(MonoSamples, SoundWithoutPcm_HasNone) {
  C_WavData sound;
  SetFormat(sound, {}, 0);
  auto mono = C_MonoSamples::Of(sound);
  ASSERT_TRUE(mono);
  EXPECT_EQ(mono->Count(), 0U);
}

TEST(MonoSamples, WidthThatCannotBeConverted_IsRefused) {
  for (const unsigned short wChannels : std::initializer_list<unsigned short>{1, 2, 3}) {
    const Bytes pcm(48);
    C_WavData sound;
    sound.SetBuffer(pcm.data(), 48);
    SetFormat(sound, {wChannels, 24, 24, true}, 48);
    EXPECT_FALSE(C_MonoSamples::Of(sound)) << wChannels;
    EXPECT_TRUE(Whole(sound).empty());
  }
}

TEST(MonoSamples, SixteenBitMono_IsNotCopied) {
  const C_SoundPtr sound = MonoSound({1, 2, 3});
  auto mono = C_MonoSamples::Of(*sound);
  ASSERT_TRUE(mono);
  sound->GetBuffer()[0] = 7;
  Samples samples(3);
  mono->Read(samples);
  EXPECT_EQ(samples, (Samples{7, 2, 3}));
}

}  // namespace
