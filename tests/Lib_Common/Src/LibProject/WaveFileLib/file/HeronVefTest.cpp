// SPDX-License-Identifier: Apache-2.0
//
// Heron streams in VEF containers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FolderTest.h"
#include "HeronBytes.h"
#include "SpBytes.h"
#include "VefBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "WrittenChunks.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"

namespace {

using heron::test::kKinds;
using heron::test::S_Kind;
using testing::ElementsAre;

constexpr const char* kVef = "in";

C_Bytes Stream(const S_Kind& kind, std::size_t dwSamples = 500) {
  return C_HeronBytes(kind, TestVoice(dwSamples), 16000).Take();
}

class HeronVef : public C_FolderTest {
 protected:
  bool Load(C_HeronFileBase& file, const C_RiffBytes& riff, bool bKeepEncoded = false) {
    return file.LoadByName(Write(kVef, riff.Take()).c_str(), bKeepEncoded, nullptr, nullptr);
  }
  bool Checks(C_HeronFileBase& file, std::uint16_t wType) {
    const C_RiffBytes riff = MonoVef(8).Chunk("vafm", VafmBytes(wType));
    return file.CheckFormat(Write(kVef, riff.Take()).c_str(), true);
  }
  // Saves the sound as a container.
  C_Bytes Converted(I_WavData& sound, tagAudioFileType eType, bool bForceEncode = false) {
    EXPECT_TRUE(sound.Convert(eType, Path(kVef).c_str(), false, false, nullptr, bForceEncode, 0));
    return Content(kVef);
  }
  C_WavFilePtr Create(bool bKeepEncoded) {
    C_WavFileFormat format;
    return C_WavFilePtr(
        format.CreateWavFile(Path(kVef).c_str(), true, bKeepEncoded, nullptr, nullptr));
  }
};

class HeronVefKind : public HeronVef, public testing::WithParamInterface<S_Kind> {};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronVefKind, testing::ValuesIn(kKinds), heron::test::NameOf);

// ---- recognising

TEST_F(HeronVef, ContainerOfAKestrelStream_IsRefused) {
  C_Heron4BitFile file;
  EXPECT_FALSE(Checks(file, 14));
  EXPECT_EQ(file.GetContainerKind(), -1);
}

TEST_F(HeronVef, ContainersOfAnyOtherType_AreTaken) {
  for (const std::uint16_t wType :
       std::initializer_list<std::uint16_t>{0, 13, 15, 31, 32, 33, 34, 35, 36, 37, 0xFFFF}) {
    C_Heron2BitFile file;
    EXPECT_TRUE(Checks(file, wType)) << wType;
    EXPECT_EQ(file.GetContainerKind(), 1);
    EXPECT_EQ(file.GetCodingType(), wType);
  }
  C_Heron2BitFile file;
  EXPECT_TRUE(file.CheckFormat(Write(kVef, MonoVef(8).Take()).c_str(), true));
  EXPECT_EQ(file.GetContainerKind(), 1);
}

TEST_F(HeronVef, SpHeaderBeforeAContainer_IsNoContainer) {
  for (const std::uint16_t wID : {std::uint16_t{35}, std::uint16_t{14}}) {
    const C_Bytes vef = MonoVef(8).Chunk("vdat", Stream(kKinds[0])).Take();
    C_Heron4BitFile file;
    EXPECT_FALSE(
        file.CheckFormat(Write(kVef, C_SpBytes().ID(wID).Stream(vef).Take()).c_str(), true));
  }
}

// ---- loading

TEST_P(HeronVefKind, Stream_DecodesAsItDoesWithoutAContainer) {
  const C_Bytes stream = Stream(GetParam());
  const auto wType = static_cast<std::uint16_t>(GetParam().eType);
  const C_RiffBytes riff = MonoVef(8).Chunk("vafm", VafmBytes(wType)).Chunk("vdat", stream);
  C_Heron6BitFile file;
  ASSERT_TRUE(Load(file, riff));
  EXPECT_EQ(SamplesOf(file.GetWavData()), heron::test::Decoded(stream, 16000));
  EXPECT_EQ(file.GetWavData()->GetEncType(), GetParam().eType);
  const unsigned char* pbyEncoded = file.GetWavData()->GetEncBuffer();
  EXPECT_EQ(C_Bytes(pbyEncoded, pbyEncoded + file.GetWavData()->GetEncBufferLen()), stream);
}

TEST_F(HeronVef, DecodedSound_IsMonoInSixteenBitsAtTheContainersRate) {
  const auto voice = TestVoice(700);
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 2, 11025, 8)).Chunk("data", RampBytes(6));
  riff.Chunk("vdat", C_HeronBytes(kKinds[0], voice, 11025).Take());
  C_Heron4BitFile file;
  ASSERT_TRUE(Load(file, riff));
  EXPECT_EQ(file.GetWavInfo()->GetChannels(), 1);
  EXPECT_EQ(file.GetWavInfo()->GetStoreBitsPerSample(), 16);
  EXPECT_TRUE(file.GetWavInfo()->IsValueSigned());
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), 11025u);
  EXPECT_EQ(file.GetWavInfo()->GetSampleSize(), 700u);
}

TEST_F(HeronVef, KeepEncoded_ReadsThePcmAsStored) {
  C_Heron4BitFile file;
  ASSERT_TRUE(Load(file, MonoVef(10).Chunk("vdat", Stream(kKinds[0])), true));
  EXPECT_EQ(PcmOf(file), RampBytes(10));
  EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), 0u);
}

TEST_F(HeronVef, ContainerWithoutAStream_LoadsOnlyAsStored) {
  C_Heron4BitFile file;
  EXPECT_FALSE(Load(file, MonoVef(8)));
  EXPECT_TRUE(Load(file, MonoVef(8), true));
}

TEST_F(HeronVef, DamagedStreams_AreFalse) {
  C_Heron4BitFile file;
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vdat", {1, 0, 0})));
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vdat", {7, 0, 0, 0, 1, 2, 3, 4})));
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vdat", 4096, Stream(kKinds[0]))));
  EXPECT_TRUE(Load(file, MonoVef(8).Chunk("vdat", Stream(kKinds[0]))));
}

// ---- the factory

TEST_P(HeronVefKind, Factory_MakesAFourBitFileThatKnowsItsType) {
  const C_SoundPtr sound = MonoSound(TestVoice(700));
  Converted(*sound, GetParam().eType);
  for (const bool bKeepEncoded : {true, false}) {
    const C_WavFilePtr file = Create(bKeepEncoded);
    ASSERT_NE(dynamic_cast<C_Heron4BitFile*>(file.get()), nullptr);
    EXPECT_EQ(file->GetCodingType(), static_cast<unsigned int>(GetParam().eType));
    EXPECT_EQ(file->GetWavInfo()->GetSampleSize(), 700u);
  }
}

TEST_F(HeronVef, Factory_LeavesKestrelContainersToTheirOwnClass) {
  Write(kVef, KestrelVefBytes(8, 2).Take());
  for (const bool bKeepEncoded : {true, false}) {
    const C_WavFilePtr file = Create(bKeepEncoded);
    EXPECT_NE(dynamic_cast<C_KestrelFile*>(file.get()), nullptr);
  }
}

TEST_F(HeronVef, KestrelStreamWithoutAType_IsFoundByTheClassThatDecodesIt) {
  Write(kVef, MonoVef(8).Chunk("vdat", C_KestrelBytes(16000).Voice(2).Take()).Take());
  const C_WavFilePtr decoded = Create(false);
  EXPECT_NE(dynamic_cast<C_KestrelFile*>(decoded.get()), nullptr);
  const C_WavFilePtr stored = Create(true);
  EXPECT_NE(dynamic_cast<C_Heron4BitFile*>(stored.get()), nullptr);
}

// ---- saving

TEST_P(HeronVefKind, WriteFileWithoutEncoding_WritesAContainerOfItsType) {
  const C_SoundPtr sound = ExampleSound({8000, 2, 16, 16}, 700);
  AddAnnotations(*sound);
  const auto stream = heron::test::Encoded(*sound, GetParam().eType);
  const C_Bytes vef = Converted(*sound, GetParam().eType);
  EXPECT_EQ(C_Bytes(vef.begin(), vef.begin() + 12),
            Join({Ascii("RIFF"), U32(static_cast<std::uint32_t>(vef.size()) - 8), Ascii("VEFF")}));
  EXPECT_THAT(ChunkNames(vef),
              ElementsAre("fmt ", "data", "cue ", "smpl", "LIST", "vafm", "vdat", "note"));
  const auto wType = static_cast<std::uint16_t>(GetParam().eType);
  EXPECT_EQ(ChunkNamed(vef, "vafm"),
            Join({U16(256), U16(wType), U16(8000), U32(0), {2, 0}, U32(0)}));
  EXPECT_EQ(ChunkNamed(vef, "vdat"), stream);
  EXPECT_EQ(ChunkNamed(vef, "data").size(), 2800u);
}

TEST_P(HeronVefKind, ConvertedAndCreatedAgain_GivesTheSourcesPcmOrTheDecodedStream) {
  const C_SoundPtr sound = MonoSound(TestVoice(3200));
  sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, 1600, "", 7);
  const C_Bytes vef = Converted(*sound, GetParam().eType);
  const C_WavFilePtr stored = Create(true);
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(SamplesOf(stored->GetWavData()), SamplesOf(sound.get()));
  EXPECT_THAT(VefEventsOf(*stored), ElementsAre(S_VefEventSeen{1, 2, 7, 1600}));
  const C_WavFilePtr decoded = Create(false);
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(SamplesOf(decoded->GetWavData()), heron::test::Decoded(ChunkNamed(vef, "vdat"), 16000));
  EXPECT_THAT(VefEventsOf(*decoded), ElementsAre(S_VefEventSeen{1, 2, 7, 1600}));
}

TEST_F(HeronVef, LoadedStream_IsWrittenUnchangedUnlessForcedOrOfAnotherType) {
  C_Heron3BitFile file;
  const C_Bytes stream = Stream(kKinds[4]);
  ASSERT_TRUE(Load(file, MonoVef(8).Chunk("vafm", VafmBytes(36)).Chunk("vdat", stream)));
  file.GetWavData()->ApplyGain(0.5, 0.5);
  EXPECT_EQ(ChunkNamed(Converted(*file.GetWavData(), AUDIO_FILE_HERON_3BIT), "vdat"), stream);
  EXPECT_EQ(ChunkNamed(Converted(*file.GetWavData(), AUDIO_FILE_HERON_3BIT, true), "vdat"),
            heron::test::Encoded(*file.GetWavData(), 36));
  EXPECT_EQ(ChunkNamed(Converted(*file.GetWavData(), AUDIO_FILE_HERON_4BIT), "vdat"),
            heron::test::Encoded(*file.GetWavData(), 32));
}

TEST_F(HeronVef, EncodingThatFails_LeavesTheOldFile) {
  const C_SoundPtr sound = MonoSound(TestVoice(700), 3999);
  const std::string strPath = Write(kVef, Ascii("before"));
  EXPECT_FALSE(
      sound->Convert(AUDIO_FILE_HERON_2BIT, strPath.c_str(), false, false, nullptr, true, 0));
  EXPECT_EQ(Content(kVef), Ascii("before"));
}

}  // namespace
