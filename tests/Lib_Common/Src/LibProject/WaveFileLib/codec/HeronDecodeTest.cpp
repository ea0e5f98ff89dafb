// SPDX-License-Identifier: Apache-2.0
//
// Heron decoding: round trips, formats, and streams that are refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "HeronBytes.h"
#include "SampleValues.h"
#include "sound/MonoMix.h"

namespace {

using heron::test::Bytes;
using heron::test::Decoded;
using heron::test::Encoded;
using heron::test::kKinds;
using heron::test::S_Kind;

bool Decode(const Bytes& stream, I_WavData* piWavData) {
  C_HeronCodec codec;
  return codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), piWavData);
}

// The ratio of the energy of the samples to that of the difference, in dB.
double Snr(const std::vector<short>& samples, const std::vector<short>& decoded) {
  double dSignal = 0.0;
  double dNoise = 1e-9;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    dSignal += std::pow(samples[i], 2.0);
    dNoise += std::pow(samples[i] - decoded[i], 2.0);
  }
  return 10.0 * std::log10(dSignal / dNoise);
}

// ---- round trips

class HeronRoundTrip : public testing::TestWithParam<S_Kind> {
 protected:
  static std::vector<short> RoundTrip(I_WavData& sound) {
    const auto stream = Encoded(sound, GetParam().eType);
    EXPECT_TRUE(stream);
    const auto decoded = Decoded(stream.value_or(Bytes{}), sound.GetWavInfo()->GetSampleRate());
    EXPECT_TRUE(decoded);
    return decoded.value_or(std::vector<short>{});
  }
};

TEST_P(HeronRoundTrip, EverySampleRate_GivesAsManySamplesAndTheSameSound) {
  for (const unsigned int dwRate : {4000u, 8000u, 11025u, 16000u, 22050u, 44100u, 48000u}) {
    const auto voice = TestVoice(dwRate / 4);
    const auto decoded = RoundTrip(*MonoSound(voice, dwRate));
    ASSERT_EQ(decoded.size(), voice.size()) << dwRate;
    // A sound that is shifted, scaled or inverted comes nowhere near this.
    EXPECT_GT(Snr(voice, decoded), 3.0 + 2.0 * GetParam().nBitDepth) << dwRate;
  }
}

TEST_P(HeronRoundTrip, EveryLengthAroundAFrame_IsKept) {
  for (const std::size_t dwSamples : {1u, 2u, 79u, 80u, 81u, 159u, 160u, 161u, 319u, 320u, 321u}) {
    EXPECT_EQ(RoundTrip(*MonoSound(TestVoice(dwSamples), 8000)).size(), dwSamples);
  }
}

TEST_P(HeronRoundTrip, ExtremeSounds_KeepTheirLengths) {
  for (const short nValue : {short{0}, short{1}, short{-1}, short{32767}, short{-32768}}) {
    EXPECT_EQ(RoundTrip(*MonoSound(std::vector<short>(700, nValue), 8000)).size(), 700u);
    EXPECT_EQ(RoundTrip(*MonoSound({nValue}, 48000)).size(), 1u);
  }
  std::vector<short> square;
  for (int i = 0; i < 700; ++i) square.push_back(i % 2 == 0 ? short{32767} : short{-32768});
  EXPECT_EQ(RoundTrip(*MonoSound(square, 8000)).size(), 700u);
}

TEST_P(HeronRoundTrip, SoundsOfOtherFormats_ComeBackAsTheirMix) {
  const std::vector<S_SoundFormat> formats = {
      {8000, 1, 8, 8}, {16000, 1, 12, 16}, {16000, 2, 16, 16}, {44100, 6, 16, 16}};
  for (const S_SoundFormat& format : formats) {
    const C_SoundPtr sound = ExampleSound(format, 5000);
    const auto mix = monomix::SamplesOf(*sound);
    const auto decoded = RoundTrip(*sound);
    ASSERT_EQ(decoded.size(), mix->size());
    EXPECT_GT(Snr(*mix, decoded), 3.0 + 2.0 * GetParam().nBitDepth) << format.wBits;
  }
}

TEST_P(HeronRoundTrip, Events_ChangeNoSample) {
  const C_SoundPtr sound = MonoSound(TestVoice(6000), 8000);
  const auto plain = RoundTrip(*sound);
  sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, 3000, "", 0);
  EXPECT_EQ(RoundTrip(*sound), plain);
}

INSTANTIATE_TEST_SUITE_P(Kinds, HeronRoundTrip, testing::ValuesIn(kKinds), heron::test::NameOf);

// ---- what decoding does to the sound

Bytes SomeStream() { return C_HeronBytes(kKinds[0], TestVoice(500), 8000).Take(); }

TEST(HeronDecoder, Sound_BecomesSixteenBitMonoAtItsRate) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, {.wChannels = 2, .wBits = 8, .wStoreBits = 8, .dwRate = 8000});
  ASSERT_TRUE(Decode(SomeStream(), &sound));
  I_WavInfo& info = *sound.GetWavInfo();
  EXPECT_EQ(info.GetSampleRate(), 8000u);
  EXPECT_EQ(info.GetByteLength(), 1000u);
  EXPECT_EQ(info.GetChannels(), 1);
  EXPECT_EQ(info.GetBitsPerSample(), 16);
  EXPECT_EQ(info.GetStoreBitsPerSample(), 16);
  EXPECT_TRUE(info.IsValueSigned());
  EXPECT_EQ(info.GetSampleSize(), 500u);
}

TEST(HeronDecoder, EventsOfTheStream_AreNotRebuilt) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
  ASSERT_TRUE(
      Decode(C_HeronBytes(kKinds[0], TestVoice(500), 8000).Events({0x20, 4, 1, 2}).Take(), &sound));
  EXPECT_EQ(sound.GetEventTagMgr()->GetEventList()->GetSize(), 0);
}

TEST(HeronDecoder, EventBytes_HaveNoInfluence) {
  const auto plain = Decoded(SomeStream(), 8000);
  ASSERT_TRUE(plain);
  for (const Bytes& events : {Bytes{0xFF}, Bytes{8, 0}, Bytes(300, 0x20)}) {
    const auto stream = C_HeronBytes(kKinds[0], TestVoice(500), 8000).Events(events).Take();
    EXPECT_EQ(Decoded(stream, 8000), plain);
  }
}

TEST(HeronDecoder, SameStream_GivesTheSameSamples) {
  const auto first = Decoded(SomeStream(), 8000);
  Decoded(C_HeronBytes(kKinds[2], TestVoice(900), 16000).Take(), 16000);
  EXPECT_EQ(Decoded(SomeStream(), 8000), first);
}

TEST(HeronDecoder, RefusedStream_LeavesTheSoundAsItWas) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3}, {.dwRate = 8000});
  EXPECT_FALSE(Decode(C_HeronBytes(kKinds[0], TestVoice(500), 8000).Mode(6).Take(), &sound));
  EXPECT_FALSE(Decode(Bytes{1, 0, 0, 0}, &sound));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
}

// ---- what is refused

TEST(HeronDecoder, StreamsWithoutAudio_AreRefused) {
  for (const S_Kind& kind : kKinds) {
    const C_HeronBytes stream = C_HeronBytes(kind, TestVoice(10), 8000).Coded({});
    for (std::size_t cbSize = 0; cbSize <= 4; ++cbSize) {
      EXPECT_FALSE(Decoded(stream.Take(cbSize), 8000)) << cbSize;
    }
  }
  EXPECT_FALSE(
      Decoded(C_HeronBytes(kKinds[0], TestVoice(10), 8000).Coded({}).Events({8, 1}).Take(), 8000));
}

TEST(HeronDecoder, UnknownModes_AreRefused) {
  Bytes stream = SomeStream();
  for (int nMode = 0; nMode < 256; ++nMode) {
    if (nMode >= 1 && nMode <= 5) continue;
    stream[0] = static_cast<std::uint8_t>(nMode);
    EXPECT_FALSE(Decoded(stream, 8000)) << nMode;
  }
}

TEST(HeronDecoder, ImpossibleOffsets_AreRefused) {
  for (const std::uint32_t dwOffset : {1u, 2u, 3u, 4u}) {
    EXPECT_FALSE(
        Decoded(C_HeronBytes(kKinds[0], TestVoice(500), 8000).Offset(dwOffset).Take(), 8000))
        << dwOffset;
  }
}

TEST(HeronDecoder, OffsetsAfterTheEnd_StandForEventsThatAreLost) {
  const auto cbStream = static_cast<std::uint32_t>(SomeStream().size());
  const auto whole = Decoded(SomeStream(), 8000);
  ASSERT_TRUE(whole);
  for (const std::uint32_t dwOffset : {cbStream, cbStream + 1, 0xFFFFFFu}) {
    const auto sound =
        Decoded(C_HeronBytes(kKinds[0], TestVoice(500), 8000).Offset(dwOffset).Take(), 8000);
    ASSERT_TRUE(sound) << dwOffset;
    EXPECT_EQ(*sound, *whole) << dwOffset;
  }
}

TEST(HeronDecoder, OtherSampleRates_AreRefused) {
  for (const unsigned int dwRate : {0u, 1u, 3999u, 48001u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(Decoded(SomeStream(), dwRate)) << dwRate;
  }
}

TEST(HeronDecoder, NullArguments_AreRefused) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
  C_HeronCodec codec;
  EXPECT_FALSE(codec.Decode(nullptr, 0, &sound));
  EXPECT_FALSE(codec.Decode(nullptr, 100, &sound));
  const Bytes stream = SomeStream();
  EXPECT_FALSE(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), nullptr));
}

}  // namespace
