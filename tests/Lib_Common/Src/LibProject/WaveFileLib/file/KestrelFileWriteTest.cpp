// SPDX-License-Identifier: Apache-2.0
//
// Kestrel files: saving, and loading again what was saved.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "FileSizeLimit.h"
#include "KestrelFileFixture.h"
#include "RiffFile.h"
#include "SpBytes.h"
#include "TestSound.h"
#include "VTable.h"
#include "WavFileFormat.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<unsigned int> g_kinds;
void RecordProgress(const S_CodecProgress* pProgress) { g_kinds.push_back(pProgress->dwKind); }

// ---- saving

TEST_F(KestrelFile, WriteFile_WritesTheBareStreamWithoutAHeader) {
  const auto sound = MonoSound(TestVoice(16000));
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  ASSERT_TRUE(Save(file, "a", false));
  const Bytes bytes = Content("a");
  EXPECT_EQ(bytes, EncodedBy(sound.get(), 16000));
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 6), (Bytes{0xD2, 0x07, 0, 0, 0x80, 0x3E}));
  EXPECT_EQ(GetSpFileID(Path("a").c_str()), 65535);
  file.DetachWavData();
}

TEST_F(KestrelFile, WriteFile_TakesTheBitRateOfTheCodecParameters) {
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(24000);
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("a"), EncodedBy(sound.get(), 24000));
  EXPECT_EQ(Content("a")[4], 0xC0);
  EXPECT_EQ(Content("a")[5], 0x5D);
}

TEST_F(KestrelFile, WriteFile_RefusedBitRate_IsFalseAndCreatesNothing) {
  const auto sound = MonoSound(TestVoice(2000));
  for (const unsigned int dwBitRate : {8000u, 4800u, 15000u, 81536u}) {
    sound->GetAudioCodecParam()->SetBitRate(dwBitRate);
    EXPECT_FALSE(
        sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, true, 0));
    EXPECT_THAT(Entries(), IsEmpty());
  }
}

TEST_F(KestrelFile, WriteFile_RefusedBitRate_LeavesAnOlderTargetAsItWas) {
  Write("a", {1, 2, 3});
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(8000);
  EXPECT_FALSE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, true, 0));
  EXPECT_EQ(Content("a"), (Bytes{1, 2, 3}));
}

TEST_F(KestrelFile, WriteFile_StoresForceEncodeWhateverItsResult) {
  C_KestrelFile file;
  EXPECT_FALSE(file.WriteFile(Path("a").c_str(), false, false, nullptr, true, 0));
  EXPECT_TRUE(file.IsForceEncode());
  EXPECT_FALSE(file.WriteFile(Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_FALSE(file.IsForceEncode());
}

TEST_F(KestrelFile, WriteFile_WithoutASound_IsFalse) {
  C_KestrelFile file;
  EXPECT_FALSE(Save(file, "a", false));
  file.GetAudioCodecParam();  // makes an empty sound
  EXPECT_FALSE(Save(file, "a", true));
  EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(KestrelFile, WriteFile_EightBitSound_IsWidenedFirst) {
  const C_SoundPtr sound = ExampleSound({16000, 1, 8, 8}, 2000);
  const C_SoundPtr wide(sound->CreateBitsConvertedData(16, 16, true, true));
  ASSERT_TRUE(wide);
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("a"), EncodedBy(wide.get(), 16000));
  EXPECT_EQ(sound->GetWavInfo()->GetBitsPerSample(), 8);
  EXPECT_EQ(sound->GetBufferLength(), 2000u);
}

TEST_F(KestrelFile, WriteFile_StereoSound_IsConvertedToItsWidthBeforeItIsMixedDown) {
  const C_SoundPtr sound = ExampleSound({16000, 2, 16, 16}, 2000);
  const Bytes before(sound->GetBuffer(), sound->GetBuffer() + sound->GetBufferLength());
  const C_SoundPtr mixed(sound->CreateBitsConvertedData(16, 16, true, true));
  ASSERT_TRUE(mixed);
  mixed->ConvertToMono();
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("a"), EncodedBy(mixed.get(), 16000));
  EXPECT_EQ(sound->GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(Bytes(sound->GetBuffer(), sound->GetBuffer() + sound->GetBufferLength()), before);
}

TEST_F(KestrelFile, WriteFile_AfterALoad_WritesTheLoadedStreamEvenWhenThePcmWasChanged) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  file.GetWavData()->ApplyGain(0.0, 0.0);
  file.GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(file.Convert(AUDIO_FILE_KESTREL, Path("b").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("b"), Stream(20));
  g_kinds.clear();
  ASSERT_TRUE(file.WriteFile(Path("c").c_str(), true, false, RecordProgress, false, 0));
  EXPECT_EQ(Content("c"), Stream(20));
  EXPECT_THAT(g_kinds, IsEmpty());
}

TEST_F(KestrelFile, WriteFile_ForcedAfterALoad_EncodesAgain) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  file.GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(file.Convert(AUDIO_FILE_KESTREL, Path("b").c_str(), true, false, nullptr, true, 0));
  EXPECT_EQ(Content("b"), EncodedBy(file.GetWavData(), 32000));
}

TEST_F(KestrelFile, WriteFile_KestrelSoundWithoutItsStream_IsFalseAndCreatesNothing) {
  const auto sound = MonoSound(TestVoice(2000));
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  file.SetCodingType(AUDIO_FILE_KESTREL);
  EXPECT_FALSE(Save(file, "a", false));
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_TRUE(Save(file, "a", true));
}

TEST_F(KestrelFile, WriteFile_ReportsProgress) {
  const auto sound = MonoSound(TestVoice(700));
  g_kinds.clear();
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, RecordProgress, false, 0));
  EXPECT_THAT(g_kinds, ElementsAre(3, 4, 4, 4));
}

TEST_F(KestrelFile, WriteFile_ToAFullDisk_IsFalse) {
  const auto sound = MonoSound(TestVoice(2000));
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  EXPECT_FALSE(file.WriteFile("/dev/full", true, false, nullptr, false, 0));
  EXPECT_FALSE(file.WriteFile(Path("no/folder").c_str(), true, false, nullptr, false, 0));
  EXPECT_FALSE(file.WriteFile(nullptr, true, false, nullptr, false, 0));
}

TEST_F(KestrelFile, WriteFile_DiskFullAtEveryByte_IsFalse) {
  WriteKestrel("a", Stream(3));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  for (std::size_t cbLimit = 0; cbLimit < 126; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    ASSERT_FALSE(Save(file, "b", false)) << cbLimit;
  }
  const C_FileSizeLimit limit(126);
  EXPECT_TRUE(Save(file, "b", false));
}

TEST_F(KestrelFile, SaveThenPrependThenLoad_GivesTheSoundBack) {
  const auto voice = TestVoice(16000);
  const auto sound = MonoSound(voice);
  sound->GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, true, 0));
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(16000);
  ASSERT_TRUE(PrependSpHeader(header, Path("a").c_str()));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  EXPECT_GT(Likeness(voice, SamplesOf(file.GetWavData()), 0), 0.98);
}

// ---- chunk for containers

TEST_F(KestrelFile, WriteDataChunk_AddsTheStreamAsVdat) {
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(7200);
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  C_RiffFile riff;
  ASSERT_TRUE(file.WriteDataChunk(&riff));
  ASSERT_EQ(riff.GetChunkCount(), 1);
  const Bytes stream = EncodedBy(sound.get(), 7200);
  C_RiffChunk* pChunk = riff.FindChunk("vdat", 0);
  ASSERT_NE(pChunk, nullptr);
  ASSERT_EQ(pChunk->GetDataLength(), stream.size());
  Bytes stored(stream.size());
  EXPECT_TRUE(pChunk->GetData(stored.data(), pChunk->GetDataLength(), 0));
  EXPECT_EQ(stored, stream);
}

TEST_F(KestrelFile, WriteDataChunk_AfterALoad_AddsTheLoadedStream) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  C_RiffFile riff;
  ASSERT_TRUE(file.WriteDataChunk(&riff));
  ASSERT_TRUE(riff.Save(Path("b").c_str(), "VEFF"));
  const Bytes saved = Content("b");
  EXPECT_EQ(Bytes(saved.begin() + 20, saved.end()), Stream(20));
}

TEST_F(KestrelFile, WriteDataChunk_HoldsTheStreamThatTheSoundHadThen) {
  WriteKestrel("a", Stream(20));
  C_RiffFile riff;
  {
    C_KestrelFile file;
    ASSERT_TRUE(Load(file, "a"));
    ASSERT_TRUE(file.WriteDataChunk(&riff));
    EXPECT_TRUE(file.GetWavData()->SetEncBuffer("x", 1));
  }
  ASSERT_TRUE(riff.Save(Path("b").c_str(), "VEFF"));
  const Bytes saved = Content("b");
  EXPECT_EQ(Bytes(saved.begin() + 20, saved.end()), Stream(20));
}

TEST_F(KestrelFile, WriteDataChunk_UsesTheForceEncodeOfTheLastWriteFile) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  file.GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(Save(file, "b", true));
  C_RiffFile riff;
  ASSERT_TRUE(file.WriteDataChunk(&riff));
  EXPECT_EQ(riff.GetChunkAt(0)->GetDataLength(), Content("b").size());
}

TEST_F(KestrelFile, WriteDataChunk_WithoutStreamOrContainer_IsFalse) {
  C_KestrelFile file;
  C_RiffFile riff;
  EXPECT_FALSE(file.WriteDataChunk(&riff));
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(8000);
  file.AttachWavData(sound.get());
  EXPECT_FALSE(file.WriteDataChunk(&riff));
  EXPECT_FALSE(file.WriteDataChunk(nullptr));
  EXPECT_EQ(riff.GetChunkCount(), 0);
}

// ---- encoding and decoding together

class KestrelAlignment : public testing::TestWithParam<unsigned int> {
 protected:
  static std::vector<short> RoundTrip(const std::vector<short>& samples) {
    const auto sound = MonoSound(samples);
    const Bytes stream = EncodedBy(sound.get(), GetParam());
    const C_SoundPtr decoded(new C_WavData);
    C_KestrelCodec codec;
    codec.LoadCodec(GetParam());
    EXPECT_TRUE(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), decoded.get(),
                             nullptr));
    return SamplesOf(decoded.get());
  }
};

TEST_P(KestrelAlignment, EncodeThenDecode_IsAlignedInTime) {
  for (const std::size_t dwSamples : {16000u, 16123u}) {
    const auto voice = TestVoice(dwSamples);
    const auto decoded = RoundTrip(voice);
    EXPECT_EQ(decoded.size(), (dwSamples + 319) / 320 * 320);
    EXPECT_EQ(BestLag(voice, decoded, 400), 0);
    EXPECT_GT(Likeness(voice, decoded, 0), GetParam() >= 16000 ? 0.97 : 0.9);
  }
}

TEST_P(KestrelAlignment, EncodeThenDecodeOfLessThanAFrame_IsOneFrameLate) {
  const auto voice = TestVoice(319);
  const auto decoded = RoundTrip(voice);
  EXPECT_EQ(decoded.size(), 640u);
  EXPECT_EQ(BestLag(voice, decoded, 400), 320);
}

INSTANTIATE_TEST_SUITE_P(EncodeRates, KestrelAlignment,
                         testing::Values(7200u, 9600u, 12000u, 14400u, 16000u, 20000u, 24000u,
                                         32000u));

}  // namespace
