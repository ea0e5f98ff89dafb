// SPDX-License-Identifier: Apache-2.0
#include "sound/WavData.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "SampleValues.h"
#include "VTable.h"

namespace {

using C_Pcm = std::vector<unsigned char>;

// Counts its destructions.
class C_MortalSound : public C_WavData {
 public:
  explicit C_MortalSound(int& nDeaths) : m_nDeaths(nDeaths) {}
  ~C_MortalSound() override { ++m_nDeaths; }

 private:
  int& m_nDeaths;
};

TEST(WavData, NewSound_IsEmpty) {
  C_WavData sound;
  EXPECT_EQ(sound.GetBuffer(), nullptr);
  EXPECT_EQ(sound.GetEncBuffer(), nullptr);
  EXPECT_EQ(sound.GetBufferLength(), 0u);
  EXPECT_EQ(sound.GetEncBufferLen(), 0u);
  EXPECT_EQ(sound.GetEncType(), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(static_cast<unsigned int>(sound.GetEncType()), 0xFFFFu);
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 0u);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 0);
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), 0);
  EXPECT_EQ(sound.GetUncompressRegionList()->GetSize(), 0);
  EXPECT_EQ(sound.GetEventTagMgr()->GetEventList()->GetSize(), 0);
  EXPECT_EQ(sound.GetEventTagMgr()->GetSampleRate(), 0u);
  EXPECT_TRUE(sound.GetAudioCodecParam()->GetAutoSilence());
}

TEST(WavData, Release_OfANewSoundDeletesIt) {
  int nDeaths = 0;
  I_WavData* pSound = new C_MortalSound(nDeaths);
  EXPECT_EQ(pSound->Release(), 0);
  EXPECT_EQ(nDeaths, 1);
}

TEST(WavData, Release_AfterOneAddRef_TakesTwoCalls) {
  int nDeaths = 0;
  I_WavData* pSound = new C_MortalSound(nDeaths);
  EXPECT_EQ(pSound->AddRef(), 1);
  EXPECT_EQ(pSound->AddRef(), 2);
  EXPECT_EQ(pSound->Release(), 1);
  EXPECT_EQ(pSound->Release(), 0);
  EXPECT_EQ(nDeaths, 0);
  EXPECT_EQ(pSound->Release(), 0);
  EXPECT_EQ(nDeaths, 1);
}

TEST(WavData, EmptySound_SurvivesEveryOperation) {
  C_WavData sound;
  EXPECT_FALSE(sound.ApplyGain(2.0, 2.0));
  EXPECT_FALSE(sound.Normalize());
  EXPECT_EQ(sound.GetDCOffset(), 0);
  sound.RemoveDCOffset();
  sound.ConvertToMono();
  sound.ConvertToStereo();
  sound.ConvertToStereoWithSilence(1);
  EXPECT_EQ(sound.DetectSilence(100, 0, true)->GetSize(), 0);
  sound.AddSilenceSegment(0, 0xFFFFFFFFu);
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(sound.CreateBitsConvertedData(16, 16, true, true), nullptr);
  EXPECT_EQ(sound.CreateChannelData(0, 0, 0), nullptr);
  EXPECT_FALSE(sound.Convert(AUDIO_FILE_WAVE, "/dev/null", true, false, nullptr, false, 0));
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 0);
  EXPECT_EQ(sound.GetBuffer(), nullptr);
}

TEST(WavData, FormatWithoutSamples_SurvivesEveryOperation) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 0xFFFFFFFEu, 2, 16, 16, true);
  EXPECT_FALSE(sound.ApplyGain(2.0, 2.0));
  EXPECT_EQ(sound.GetDCOffset(), 0);
  sound.RemoveDCOffset();
  sound.ConvertToMono();
  sound.ConvertToStereoWithSilence(0);
  EXPECT_EQ(sound.DetectSilence(100, 0, true)->GetSize(), 0);
  EXPECT_EQ(sound.CreateChannelData(0, 0, 1), nullptr);
  EXPECT_FALSE(sound.Convert(AUDIO_FILE_WAVE, "/dev/null", true, false, nullptr, false, 0));
  EXPECT_EQ(sound.Clone(), nullptr);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(sound.GetBufferLength(), 0xFFFFFFFEu);
}

TEST(WavData, FormatThatClaimsMoreThanIsHeld_IsNotCopied) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4});
  sound.SetWavInfoData(8000, 10, 2, 16, 16, true);
  EXPECT_EQ(sound.Clone(), nullptr);
  EXPECT_FALSE(sound.Convert(AUDIO_FILE_WAVE, "/dev/null", true, false, nullptr, false, 0));
  sound.ConvertToMono();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  C_WavData copy;
  SetSound(copy, {5});
  EXPECT_FALSE(copy.CopyWavData(&sound));
  EXPECT_EQ(ValuesOf(copy), (C_Values{5}));
  EXPECT_FALSE(copy.SetChannelData(&sound, 0, 0, 0));
  sound.SetWavInfoData(8000, 8, 2, 16, 16, true);
  EXPECT_NE(C_SoundPtr(sound.Clone()), nullptr);
  EXPECT_TRUE(copy.CopyWavData(&sound));
}

// Frames with so many channels that relatively few frames make a sound whose sample count wraps.
constexpr unsigned int kManyChannels = 65535;
constexpr unsigned int kManyFrames = 8193;

// More than half a gibibyte. Only the values that are set touch their memory.
class C_HugeSound : public C_WavData {
 public:
  C_HugeSound() {
    SetWavInfoData(8000, 0, kManyChannels, 8, 8, true);
    AllocBuffer(kManyChannels * kManyFrames);
    for (unsigned int i = kManyFrames - 4; i < kManyFrames; ++i) Set(i, 0, 0);
  }
  void Set(unsigned int dwFrame, unsigned int dwChannel, unsigned char byValue) {
    GetBuffer()[dwFrame * kManyChannels + dwChannel] = byValue;
  }
  unsigned char Get(unsigned int dwFrame, unsigned int dwChannel) {
    return GetBuffer()[dwFrame * kManyChannels + dwChannel];
  }
};

TEST(WavData, PositionsBeyondTheCountThatWrapped_AreReached) {
  C_HugeSound sound;
  ASSERT_EQ(sound.GetWavInfo()->GetSampleSize(), 0u);
  constexpr unsigned int dwLast = kManyFrames - 1;
  sound.Set(dwLast - 2, 0, 100);
  const auto* pSegments = sound.DetectSilenceRange(0, 0, dwLast - 3, dwLast, 0, 0, true);
  EXPECT_EQ(RangesOf(pSegments), (std::vector<std::pair<unsigned int, unsigned int>>{
                                     {dwLast - 3, dwLast - 3}, {dwLast - 1, dwLast}}));
  sound.Set(dwLast, 0, 7);
  sound.Set(dwLast, kManyChannels - 1, 9);
  const C_SoundPtr channel(sound.CreateChannelData(0, dwLast - 2, 3));
  ASSERT_NE(channel, nullptr);
  EXPECT_EQ(ValuesOf(*channel), (C_Values{100, 0, 7}));
  EXPECT_EQ(sound.CreateChannelData(0, dwLast, 2), nullptr);
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(sound.Get(dwLast, 0), 0);
  EXPECT_EQ(sound.Get(dwLast, kManyChannels - 1), 0);
  EXPECT_EQ(sound.Get(dwLast - 2, 0), 100);
}

TEST(WavData, ConvertToStereo_FillsEveryFrameOfASoundWhoseCountWrapped) {
  C_HugeSound sound;
  sound.Set(kManyFrames - 1, 0, 7);
  sound.Set(kManyFrames - 1, 1, 9);
  sound.ConvertToStereo();
  ASSERT_EQ(sound.GetBufferLength(), kManyFrames * 2);
  EXPECT_EQ(sound.GetBuffer()[kManyFrames * 2 - 2], 7);
  EXPECT_EQ(sound.GetBuffer()[kManyFrames * 2 - 1], 9);
}

TEST(WavData, BufferLength_IsWhatTheFormatSays) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 1000, 1, 16, 16, true);
  EXPECT_EQ(sound.GetBufferLength(), 1000u);
  EXPECT_EQ(sound.GetBuffer(), nullptr);
}

TEST(WavData, SetWavInfo_CopiesTheFormatAndSetsTheRateOfTheEvents) {
  C_WavInfo info;
  info.SetInfoData(22050, 8, 2, 12, 16, false);
  info.SetEncByteLen(5);
  C_WavData sound;
  sound.SetWavInfo(&info);
  EXPECT_NE(sound.GetWavInfo(), &info);
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 22050u);
  EXPECT_EQ(sound.GetWavInfo()->GetBitsPerSample(), 12);
  EXPECT_EQ(sound.GetEncBufferLen(), 0u);
  EXPECT_EQ(sound.GetEventTagMgr()->GetSampleRate(), 22050u);
  sound.SetWavInfoData(11025, 8, 2, 12, 16, false);
  EXPECT_EQ(sound.GetEventTagMgr()->GetSampleRate(), 11025u);
}

TEST(WavData, SetWavInfo_ConvertsEventsSetInSamplesAnew) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
  I_EventTag* pEvent = sound.GetEventTagMgr()->AddEventBySamplePos(1, 2, 8000, "x", 3);
  EXPECT_EQ(pEvent->GetTime(), 1000u);
  sound.SetWavInfoData(16000, 0, 1, 16, 16, true);
  EXPECT_EQ(pEvent->GetTime(), 500u);
  EXPECT_EQ(pEvent->GetSamplePos(), 8000u);
}

TEST(WavData, SetWavInfo_RefreshesTheSamples) {
  C_WavData sound;
  SetSound(sound, {0x0800}, {1, 16, 16, true, 8000});
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 0), 2048);
  sound.SetWavInfoData(8000, 2, 1, 12, 16, true);
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 0), -2048);
  C_WavInfo unsignedInfo;
  unsignedInfo.SetInfoData(8000, 2, 1, 12, 16, false);
  sound.SetWavInfo(&unsignedInfo);
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 0), 0);
}

TEST(WavData, AllocBuffer_ReplacesAttachedMemoryToo) {
  C_Pcm attached(6, 7);
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
  sound.AttachBuffer(attached.data(), 6);
  unsigned char* pbyBuffer = sound.AllocBuffer(4);
  EXPECT_NE(pbyBuffer, attached.data());
  EXPECT_EQ(sound.GetBuffer(), pbyBuffer);
  EXPECT_EQ(sound.GetBufferLength(), 4u);
  EXPECT_EQ(sound.DetachBuffer(), nullptr);
  EXPECT_EQ(attached, C_Pcm(6, 7));
}

TEST(WavData, AllocBuffer_OfNothing_HoldsSomething) {
  C_WavData sound;
  EXPECT_NE(sound.AllocBuffer(0), nullptr);
  EXPECT_NE(sound.GetBuffer(), nullptr);
  EXPECT_EQ(sound.GetBufferLength(), 0u);
}

TEST(WavData, SetBuffer_CopiesAndSetsOnlyTheLength) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 2, 12, 16, false);
  C_Pcm pcm{1, 2, 3, 4};
  EXPECT_TRUE(sound.SetBuffer(pcm.data(), 4));
  pcm[0] = 99;
  EXPECT_EQ(BytesOf(sound), (C_Pcm{1, 2, 3, 4}));
  EXPECT_EQ(sound.GetBufferLength(), 4u);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(sound.GetWavInfo()->GetBitsPerSample(), 12);
  EXPECT_FALSE(sound.GetWavInfo()->IsValueSigned());
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 8000u);
}

TEST(WavData, SetBuffer_OfNoBytes_IsTrue) {
  C_WavData sound;
  const unsigned char byAny = 1;
  EXPECT_TRUE(sound.SetBuffer(&byAny, 0));
  EXPECT_NE(sound.GetBuffer(), nullptr);
  EXPECT_TRUE(sound.SetBuffer(nullptr, 0));
}

TEST(WavData, SetBuffer_OfNull_IsRefused) {
  C_WavData sound;
  SetSound(sound, {1, 2});
  EXPECT_FALSE(sound.SetBuffer(nullptr, 2));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2}));
}

TEST(WavData, SetBuffer_OfPartOfItself_KeepsThatPart) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  EXPECT_TRUE(sound.SetBuffer(sound.GetBuffer() + 2, 2));
  EXPECT_EQ(ValuesOf(sound), (C_Values{2}));
}

TEST(WavData, AttachedBuffer_RefusesToBeReplaced) {
  C_Pcm attached{1, 0, 2, 0};
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
  sound.AttachBuffer(attached.data(), 4);
  C_WavData other;
  SetSound(other, {7});
  const C_Pcm pcm(2);
  EXPECT_FALSE(sound.SetBuffer(pcm.data(), 2));
  EXPECT_FALSE(sound.CopyWavData(&other));
  EXPECT_FALSE(sound.ConvertBits(8, 8, false, true));
  EXPECT_FALSE(sound.ConvertBits(16, 16, true, true));  // even to the format it has
  EXPECT_EQ(sound.GetBuffer(), attached.data());
  EXPECT_EQ(sound.GetBufferLength(), 4u);
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(attached, (C_Pcm{1, 0, 2, 0}));
}

TEST(WavData, AttachedBuffer_IsReturnedAndNeverFreed) {
  C_Pcm attached{1, 0, 2, 0};
  {
    C_WavData sound;
    sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
    sound.AttachBuffer(attached.data(), 4);
    EXPECT_EQ(sound.GetBufferLength(), 4u);
    EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(1, 0), 2);
    EXPECT_EQ(sound.DetachBuffer(), attached.data());
    EXPECT_EQ(sound.GetBuffer(), nullptr);
    EXPECT_EQ(sound.DetachBuffer(), nullptr);
    sound.AttachBuffer(attached.data(), 4);
  }
  EXPECT_EQ(attached, (C_Pcm{1, 0, 2, 0}));
}

TEST(WavData, OwnedBuffer_IsNotDetached) {
  C_WavData sound;
  SetSound(sound, {1});
  EXPECT_EQ(sound.DetachBuffer(), nullptr);
  EXPECT_EQ(ValuesOf(sound), (C_Values{1}));
}

TEST(WavData, CopyWavData_TakesSamplesAndFormat) {
  C_WavData source;
  SetSound(source, {1, -2, 3, -4}, {2, 12, 16, true, 11025});
  C_WavData sound;
  SetSound(sound, {9});
  EXPECT_TRUE(sound.CopyWavData(&source));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, -2, 3, -4}));
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(sound.GetWavInfo()->GetBitsPerSample(), 12);
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 11025u);
  EXPECT_EQ(sound.GetEventTagMgr()->GetSampleRate(), 11025u);
  EXPECT_NE(sound.GetBuffer(), source.GetBuffer());
}

TEST(WavData, CopyWavData_OfNull_IsFalse) {
  C_WavData sound;
  SetSound(sound, {9});
  EXPECT_FALSE(sound.CopyWavData(nullptr));
  EXPECT_EQ(ValuesOf(sound), (C_Values{9}));
}

TEST(WavData, CopyWavData_OfItself_ChangesNothing) {
  C_WavData sound;
  SetSound(sound, {9, 8});
  EXPECT_TRUE(sound.CopyWavData(&sound));
  EXPECT_EQ(ValuesOf(sound), (C_Values{9, 8}));
}

TEST(WavData, Clone_HasSamplesAndFormatOnly) {
  C_WavData sound;
  SetSound(sound, {1, 2}, {1, 16, 16, true, 8000});
  const unsigned char byEnc = 5;
  sound.SetEncBuffer(&byEnc, 1);
  sound.SetEncType(AUDIO_FILE_KESTREL);
  sound.AddSilenceSegment(0, 1);
  sound.AddUncompressRegion(0, 1);
  sound.GetEventTagMgr()->AddEvent(1, 1, 0, "e", 0);
  sound.GetAudioCodecParam()->SetBitRate(16000);
  void* pInfo = nullptr;
  sound.GetInfo(WAV_DATA_INFO_CUE, &pInfo);
  static_cast<I_WavDataCueInfo*>(pInfo)->AddCuePoint(1, 2, 3, 4, 5, 6);

  const C_SoundPtr clone(sound.Clone());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(ValuesOf(*clone), (C_Values{1, 2}));
  EXPECT_EQ(clone->GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(clone->GetEncBuffer(), nullptr);
  EXPECT_EQ(clone->GetEncBufferLen(), 0u);
  EXPECT_EQ(clone->GetEncType(), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(clone->GetSilenceSegmentList()->GetSize(), 0);
  EXPECT_EQ(clone->GetUncompressRegionList()->GetSize(), 0);
  EXPECT_EQ(clone->GetEventTagMgr()->GetEventList()->GetSize(), 0);
  EXPECT_EQ(clone->GetAudioCodecParam()->GetBitRate(), 0u);
  clone->GetInfo(WAV_DATA_INFO_CUE, &pInfo);
  EXPECT_FALSE(static_cast<I_WavDataCueInfo*>(pInfo)->IsValid());
}

TEST(WavData, Clone_OfAnAttachedSound_OwnsItsSamples) {
  C_Pcm attached{1, 0};
  C_WavData sound;
  sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
  sound.AttachBuffer(attached.data(), 2);
  const C_SoundPtr clone(sound.Clone());
  EXPECT_NE(clone->GetBuffer(), attached.data());
  EXPECT_EQ(clone->DetachBuffer(), nullptr);
}

TEST(WavData, EncodedBuffer_IsACopyWithItsLength) {
  C_WavData sound;
  SetSound(sound, {1});
  C_Pcm encoded{9, 8, 7};
  EXPECT_TRUE(sound.SetEncBuffer(encoded.data(), 3));
  encoded[0] = 0;
  ASSERT_NE(sound.GetEncBuffer(), nullptr);
  EXPECT_EQ(sound.GetEncBuffer()[0], 9);
  EXPECT_EQ(sound.GetEncBufferLen(), 3u);
  EXPECT_EQ(sound.GetWavInfo()->GetEncByteLen(), 3u);
  sound.SetEncType(AUDIO_FILE_KESTREL);
  EXPECT_EQ(sound.GetEncType(), AUDIO_FILE_KESTREL);
  EXPECT_TRUE(sound.SetEncBuffer(encoded.data(), 1));
  EXPECT_EQ(sound.GetEncBufferLen(), 1u);
  EXPECT_EQ(ValuesOf(sound), (C_Values{1}));
}

TEST(WavData, EncodedBuffer_OfNull_IsRefused) {
  C_WavData sound;
  const unsigned char byEnc = 5;
  EXPECT_TRUE(sound.SetEncBuffer(&byEnc, 1));
  EXPECT_FALSE(sound.SetEncBuffer(nullptr, 4));
  EXPECT_EQ(sound.GetEncBufferLen(), 1u);
  EXPECT_TRUE(sound.SetEncBuffer(nullptr, 0));
  EXPECT_EQ(sound.GetEncBufferLen(), 0u);
}

TEST(WavData, EncodedLength_SurvivesChangesOfThePcm) {
  C_WavData sound;
  const unsigned char encoded[] = {1, 2, 3};
  sound.SetEncBuffer(encoded, 3);
  SetSound(sound, {1, 2});
  sound.SetBuffer(encoded, 2);
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetEncBufferLen(), 3u);
}

TEST(WavData, UnknownEncodedKinds_AreKeptAsTheyAre) {
  C_WavData sound;
  sound.SetEncType(static_cast<tagAudioFileType>(0x1001));
  EXPECT_EQ(static_cast<unsigned int>(sound.GetEncType()), 0x1001u);
}

template <typename Interface>
Interface* InfoOf(I_WavData& sound, int nType) {
  void* pInfo = nullptr;
  EXPECT_TRUE(sound.GetInfo(nType, &pInfo)) << nType;
  return static_cast<Interface*>(pInfo);
}

TEST(WavData, GetInfo_GivesTheFiveKinds) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, {2, 16, 16, true, 8000});
  EXPECT_EQ(InfoOf<I_WavDataCueInfo>(sound, 1)->GetChunkLength(), 4u);
  EXPECT_EQ(InfoOf<I_WavDataTextInfo>(sound, 2)->GetChunkLength(), 4u);
  EXPECT_FALSE(InfoOf<I_WavDataTextInfo>(sound, 2)->IsValid());
  EXPECT_EQ(InfoOf<I_WavDataSamplerInfo>(sound, 3)->GetChunkLength(), 36u);
  EXPECT_EQ(InfoOf<I_WavDataListInfo>(sound, 4)->GetLabelCount(), 0);
  EXPECT_EQ(InfoOf<I_WavDataExtraChunkInfo>(sound, 5)->GetSize(), 0);
  // The objects are the same each time.
  EXPECT_EQ(InfoOf<void>(sound, 5), InfoOf<void>(sound, 5));
}

TEST(WavData, GetInfo_OfAnyOtherKind_IsFalseAndNull) {
  C_WavData sound;
  for (const int nType : {0, 6, -1, 0x7FFFFFFF}) {
    void* pInfo = &sound;
    EXPECT_FALSE(sound.GetInfo(nType, &pInfo)) << nType;
    EXPECT_EQ(pInfo, nullptr) << nType;
  }
}

TEST(WavData, SamplerOffsets_FollowTheFormat) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, {2, 16, 16, true, 8000});
  auto* pSampler = InfoOf<I_WavDataSamplerInfo>(sound, WAV_DATA_INFO_SAMPLER);
  ASSERT_TRUE(pSampler->AddSampleLoop(1, LOOP_FORWARD, 100, 200, 0, 0));
  EXPECT_EQ(pSampler->GetSampleLoopByIndex(0)->GetStartByteOffset(), 400u);
  sound.SetWavInfoData(8000, 8, 1, 8, 8, false);
  EXPECT_EQ(pSampler->GetSampleLoopByIndex(0)->GetStartByteOffset(), 100u);
}

}  // namespace
