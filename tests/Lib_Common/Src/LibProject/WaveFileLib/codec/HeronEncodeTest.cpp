// SPDX-License-Identifier: Apache-2.0
//
// Heron encoding: whole streams, their events, what is reported and what is refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <thread>

#include "HeronBytes.h"
#include "SampleValues.h"
#include "sound/MonoMix.h"

namespace {

using heron::test::Bytes;
using heron::test::Encoded;
using heron::test::kKinds;
using heron::test::S_Kind;
using testing::Each;
using testing::IsEmpty;

std::vector<S_CodecProgress> g_records;
void Record(const S_CodecProgress* pProgress) { g_records.push_back(*pProgress); }

std::vector<unsigned int> ValuesReported() {
  std::vector<unsigned int> values;
  for (const S_CodecProgress& record : g_records) values.push_back(record.dwValue);
  return values;
}

void AddEvent(I_WavData& sound, unsigned short wMain, unsigned short wSub, unsigned int dwPos) {
  sound.GetEventTagMgr()->AddEventBySamplePos(wMain, wSub, dwPos, "", 0);
}

// ---- streams

class HeronEncode : public testing::TestWithParam<S_Kind> {};

TEST_P(HeronEncode, SoundWithoutEvents_IsAHeadWithoutOffsetAndItsAudio) {
  const auto voice = TestVoice(1000);
  const auto stream = Encoded(*MonoSound(voice, 8000), GetParam().eType);
  EXPECT_EQ(stream, C_HeronBytes(GetParam(), voice, 8000).Take());
  EXPECT_EQ(Bytes(stream->begin(), stream->begin() + 4), (Bytes{GetParam().byMode, 0, 0, 0}));
}

TEST_P(HeronEncode, SoundWithEvents_HasTheirStreamAfterItsAudio) {
  const auto voice = TestVoice(160 * 320);
  const C_SoundPtr sound = MonoSound(voice, 8000);
  AddEvent(*sound, 1, 2, 100 * 160);
  EXPECT_EQ(Encoded(*sound, GetParam().eType),
            C_HeronBytes(GetParam(), voice, 8000).Events({8, 0x60, 0x20, 4, 1, 2, 8, 0xE0}).Take());
}

TEST_P(HeronEncode, SameSound_GivesTheSameBytes) {
  const C_SoundPtr sound = MonoSound(TestVoice(3000), 11025);
  const auto first = Encoded(*sound, GetParam().eType);
  Encoded(*MonoSound(TestVoice(500), 44100), GetParam().eType);
  EXPECT_EQ(Encoded(*sound, GetParam().eType), first);
}

TEST_P(HeronEncode, SeveralThreads_DoNotDisturbEachOther) {
  const S_Kind kind = GetParam();
  const auto encode = [kind](unsigned int dwRate, std::optional<Bytes>* pStream) {
    *pStream = Encoded(*MonoSound(TestVoice(4000), dwRate), kind.eType);
  };
  std::optional<Bytes> alone;
  encode(8000, &alone);
  std::optional<Bytes> beside;
  std::optional<Bytes> other;
  std::thread first(encode, 8000u, &beside);
  std::thread second(encode, 16000u, &other);
  first.join();
  second.join();
  EXPECT_EQ(beside, alone);
  EXPECT_EQ(other, C_HeronBytes(kind, TestVoice(4000), 16000).Take());
}

INSTANTIATE_TEST_SUITE_P(Kinds, HeronEncode, testing::ValuesIn(kKinds), heron::test::NameOf);

TEST(HeronEncoder, EventBytes_AreTheLowHalvesOfTheCommands) {
  const auto voice = TestVoice(160);
  const C_SoundPtr sound = MonoSound(voice, 8000);
  AddEvent(*sound, 0x0102, 0xFE03, 0);
  EXPECT_EQ(Encoded(*sound, 32),
            C_HeronBytes(kKinds[0], voice, 8000).Events({0x20, 4, 2, 3}).Take());
}

TEST(HeronEncoder, FramesOfEvents_FollowTheSampleRate) {
  for (const unsigned int dwRate : {4000u, 11025u, 44100u, 48000u}) {
    const auto dwFrame = static_cast<unsigned int>(heron::FrameLength(static_cast<int>(dwRate)));
    const auto voice = TestVoice(dwFrame * 33);
    const C_SoundPtr sound = MonoSound(voice, dwRate);
    AddEvent(*sound, 1, 2, dwFrame * 32 - 1);
    AddEvent(*sound, 3, 4, dwFrame * 32);
    EXPECT_EQ(Encoded(*sound, 36), C_HeronBytes(kKinds[4], voice, static_cast<int>(dwRate))
                                       .Events({0x20, 4, 1, 2, 8, 0x20, 0x28, 5, 3, 4})
                                       .Take())
        << dwRate;
  }
}

TEST(HeronEncoder, PartOfAFrameAtTheEnd_CountsAsAFrame) {
  const auto voice = TestVoice(160 * 31 + 1);
  const C_SoundPtr sound = MonoSound(voice, 8000);
  AddEvent(*sound, 1, 2, 0);
  EXPECT_EQ(Encoded(*sound, 32),
            C_HeronBytes(kKinds[0], voice, 8000).Events({0x20, 4, 1, 2, 8, 0x20}).Take());
}

TEST(HeronEncoder, EventAfterTheSound_MakesAStreamOfOneGap) {
  const auto voice = TestVoice(160);
  const C_SoundPtr sound = MonoSound(voice, 8000);
  AddEvent(*sound, 1, 2, 160 * 32);
  EXPECT_EQ(Encoded(*sound, 32), C_HeronBytes(kKinds[0], voice, 8000).Events({8, 1}).Take());
}

// ---- sounds of other formats

TEST(HeronEncoder, SoundsOfOtherFormats_AreCodedAsTheirMix) {
  const std::vector<S_SoundFormat> formats = {{8000, 1, 8, 8},   {8000, 1, 12, 16},
                                              {8000, 1, 24, 32}, {16000, 2, 16, 16},
                                              {8000, 2, 8, 8},   {44100, 6, 16, 16}};
  for (const S_SoundFormat& format : formats) {
    const C_SoundPtr sound = ExampleSound(format, 700);
    const auto mix = monomix::SamplesOf(*sound);
    ASSERT_TRUE(mix);
    ASSERT_EQ(mix->size(), 700u);
    EXPECT_EQ(Encoded(*sound, 32),
              C_HeronBytes(kKinds[0], *mix, static_cast<int>(format.dwSampleRate)).Take())
        << format.wChannels << " channels of " << format.wBits;
  }
}

TEST(HeronEncoder, AlikeChannels_AreCodedAsOneOfThem) {
  const auto voice = TestVoice(500);
  C_Values stereo;
  for (const short nSample : voice) stereo.insert(stereo.end(), {nSample, nSample});
  C_WavData sound;
  SetSound(sound, stereo, {.wChannels = 2, .dwRate = 8000});
  EXPECT_EQ(Encoded(sound, 32), Encoded(*MonoSound(voice, 8000), 32));
}

TEST(HeronEncoder, TheSoundItself_StaysAsItWas) {
  const C_SoundPtr sound = ExampleSound({16000, 2, 16, 16}, 700);
  AddEvent(*sound, 1, 2, 3);
  const auto before = BytesOf(*sound);
  ASSERT_TRUE(Encoded(*sound, 32));
  EXPECT_EQ(BytesOf(*sound), before);
  EXPECT_EQ(sound->GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(sound->GetEventTagMgr()->GetEventList()->GetSize(), 1);
}

// ---- reports

TEST(HeronEncoder, LastRecord_IsTheNumberOf32FrameGroups) {
  constexpr std::array<std::array<unsigned int, 2>, 7> kGroups = {
      {{1, 1}, {31, 1}, {32, 1}, {33, 2}, {64, 2}, {65, 3}, {320, 10}}};
  for (const auto& [dwFrames, dwGroups] : kGroups) {
    g_records.clear();
    ASSERT_TRUE(Encoded(*MonoSound(TestVoice(dwFrames * 80), 4000), 32, Record));
    ASSERT_FALSE(g_records.empty());
    EXPECT_EQ(g_records.back().dwValue, dwGroups) << dwFrames;
  }
}

// A record comes after each block, which has 200 frames, and the last one at the end.
TEST(HeronEncoder, Records_CountTheGroupsThatAreDone) {
  constexpr unsigned int kFramesOfBlocks = 4 * 200;
  g_records.clear();
  ASSERT_TRUE(Encoded(*MonoSound(TestVoice((kFramesOfBlocks + 70) * 80), 4000), 32, Record));
  const auto values = ValuesReported();
  EXPECT_GE(values.size(), 4U);
  EXPECT_TRUE(std::ranges::is_sorted(values, std::less_equal<>()))
      << testing::PrintToString(values);
  EXPECT_EQ(values.back(), 28U);
  for (const S_CodecProgress& record : g_records) {
    EXPECT_EQ(record.dwKind, S_CodecProgress::kProgress);
    EXPECT_THAT(record.szText, Each('\0'));
  }
}

TEST(HeronEncoder, FailedEncoding_ReportsNoEnd) {
  g_records.clear();
  EXPECT_FALSE(Encoded(*MonoSound(TestVoice(100), 8000), 31, Record));
  EXPECT_THAT(g_records, IsEmpty());
}

// What a codec prints while it encodes dwFrames frames.
std::string Printed(bool bVerbose, unsigned int dwFrames, unsigned int dwTypeCode) {
  const C_SoundPtr sound = MonoSound(TestVoice(dwFrames * 80), 4000);
  C_HeronCodec codec;
  codec.SetVerbose(bVerbose);
  EXPECT_EQ(codec.IsVerbose(), bVerbose);
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  testing::internal::CaptureStdout();
  codec.Encode(sound.get(), dwTypeCode, nullptr, nullptr, &pbyStream, &dwLength);
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  return testing::internal::GetCapturedStdout();
}

TEST(HeronEncoder, VerboseCodec_PrintsFiftyDotsAndHowItEnded) {
  const std::string strDots(50, '.');
  EXPECT_EQ(Printed(true, 1, 32), strDots + "ok");
  EXPECT_EQ(Printed(true, 70, 36), strDots + "ok");
  EXPECT_EQ(Printed(true, 70, 37), strDots + "fail");
}

TEST(HeronEncoder, NewCodec_PrintsNothing) {
  EXPECT_FALSE(C_HeronCodec().IsVerbose());
  EXPECT_EQ(Printed(false, 70, 32), "");
  EXPECT_EQ(Printed(false, 70, 37), "");
}

std::string g_strSeen;
void RecordOutput(const S_CodecProgress*) {
  if (!g_strSeen.empty()) return;
  static_cast<void>(std::fflush(stdout));
  g_strSeen = testing::internal::GetCapturedStdout();
  testing::internal::CaptureStdout();
}

TEST(HeronEncoder, Dots_GrowWithTheWork) {
  const C_SoundPtr sound = MonoSound(TestVoice(std::size_t{5} * 200 * 80), 4000);
  C_HeronCodec codec;
  codec.SetVerbose(true);
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  g_strSeen.clear();
  testing::internal::CaptureStdout();
  EXPECT_TRUE(codec.Encode(sound.get(), 32, nullptr, RecordOutput, &pbyStream, &dwLength));
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  // The first record comes after the first of five blocks.
  EXPECT_EQ(g_strSeen, std::string(10, '.'));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(40, '.') + "ok");
}

// ---- what is refused

TEST(HeronEncoder, OtherTypeCodes_AreRefused) {
  const C_SoundPtr sound = MonoSound(TestVoice(200), 8000);
  for (const unsigned int dwType : {0u, 1u, 4u, 14u, 31u, 37u, 38u, 0x8001u, 0xFFFFu, 0x10020u}) {
    EXPECT_FALSE(Encoded(*sound, dwType)) << dwType;
  }
}

TEST(HeronEncoder, SampleRatesFrom4000To48000_AreTaken) {
  for (const unsigned int dwRate : {4000u, 4001u, 8000u, 22050u, 47999u, 48000u}) {
    EXPECT_TRUE(Encoded(*MonoSound(TestVoice(300), dwRate), 32)) << dwRate;
  }
  for (const unsigned int dwRate :
       {0u, 1u, 3999u, 48001u, 96000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(Encoded(*MonoSound(TestVoice(300), dwRate), 32)) << dwRate;
  }
}

TEST(HeronEncoder, SoundsWithoutSamples_AreRefused) {
  EXPECT_FALSE(Encoded(*MonoSound({}, 8000), 32));
  C_WavData nothing;
  nothing.SetWavInfoData(8000, 0, 1, 16, 16, true);
  EXPECT_FALSE(Encoded(nothing, 32));
  C_WavData lying;
  lying.SetWavInfoData(8000, 640, 1, 16, 16, true);
  EXPECT_FALSE(Encoded(lying, 32));
}

TEST(HeronEncoder, WidthsThatAreNotSupported_AreRefused) {
  C_WavData sound;
  SetSound(sound, C_Values(300, 5), {.wBits = 24, .wStoreBits = 24, .dwRate = 8000});
  EXPECT_FALSE(Encoded(sound, 32));
}

TEST(HeronEncoder, NullArguments_AreRefused) {
  const C_SoundPtr sound = MonoSound(TestVoice(200), 8000);
  unsigned char byBefore = 7;
  unsigned char* pbyStream = &byBefore;
  unsigned int dwLength = 5;
  C_HeronCodec codec;
  EXPECT_FALSE(codec.Encode(nullptr, 32, nullptr, nullptr, &pbyStream, &dwLength));
  EXPECT_EQ(pbyStream, nullptr);
  EXPECT_EQ(dwLength, 0u);
  EXPECT_FALSE(codec.Encode(sound.get(), 32, nullptr, nullptr, nullptr, &dwLength));
  EXPECT_FALSE(codec.Encode(sound.get(), 32, nullptr, nullptr, &pbyStream, nullptr));
}

TEST(HeronEncoder, Codec_HasNoEntryPointsOfAFrameCoder) {
  const C_HeronCodec codec;
  EXPECT_EQ(codec.GetEncoderInit(), nullptr);
  EXPECT_EQ(codec.GetEncodeFrame(), nullptr);
  EXPECT_EQ(codec.GetDecoderInit(), nullptr);
  EXPECT_EQ(codec.GetDecodeFrame(), nullptr);
}

}  // namespace
