// SPDX-License-Identifier: Apache-2.0
//
// Kestrel streams in VEF containers and after codec heads.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "SpBytes.h"
#include "TestSound.h"
#include "VefBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "WrittenChunks.h"
#include "file/KestrelFile.h"
#include "file/VefFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int g_nPieces = 0;
void CountPiece(void*, unsigned int) { ++g_nPieces; }

class KestrelVef : public C_FolderTest {
 protected:
  bool Load(C_KestrelFile& file, const C_RiffBytes& riff, bool bKeepEncoded = false) {
    g_nPieces = 0;
    return file.LoadByName(Write("in", riff.Take()).c_str(), bKeepEncoded, nullptr, &CountPiece);
  }
  // What the stream decodes to by itself.
  C_Bytes DecodedAlone(const C_Bytes& stream) {
    C_KestrelFile file;
    const std::string strPath = Write("alone", C_SpBytes().Stream(stream).Take());
    EXPECT_TRUE(file.LoadByName(strPath.c_str(), false, nullptr, nullptr));
    return PcmOf(file);
  }
  // Saves the sound as a container.
  C_Bytes Converted(I_WavData& sound, bool bForceEncode = false) {
    EXPECT_TRUE(sound.Convert(AUDIO_FILE_KESTREL, Path("vef").c_str(), false, false, nullptr,
                              bForceEncode, 0));
    return Content("vef");
  }
};

// ---- recognising

TEST_F(KestrelVef, CheckFormat_OfAContainer_SetsTheKindAndTheFormatAsStored) {
  C_KestrelFile file;
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 2, 8000, 8))
      .Chunk("data", RampBytes(6))
      .Chunk("vafm", VafmBytes(14));
  ASSERT_TRUE(file.CheckFormat(Write("in", riff.Take()).c_str(), true));
  EXPECT_EQ(file.GetContainerKind(), 1);
  EXPECT_EQ(file.GetCodingType(), 14u);
  EXPECT_EQ(file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 6u);
  EXPECT_EQ(file.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(file.GetDataStartPos(), 44u);
}

TEST_F(KestrelVef, ContainersOfHeronStreams_AreRefused) {
  for (const std::uint16_t wType : std::initializer_list<std::uint16_t>{32, 33, 34, 35, 36}) {
    C_KestrelFile file;
    EXPECT_FALSE(file.CheckFormat(
        Write("in", MonoVef(8).Chunk("vafm", VafmBytes(wType)).Take()).c_str(), true))
        << wType;
    EXPECT_EQ(file.GetContainerKind(), -1) << wType;
  }
}

TEST_F(KestrelVef, ContainersOfAnyOtherType_AreTaken) {
  for (const std::uint16_t wType :
       std::initializer_list<std::uint16_t>{0, 1, 13, 14, 15, 31, 37, 0xFFFF}) {
    C_KestrelFile file;
    EXPECT_TRUE(file.CheckFormat(
        Write("in", MonoVef(8).Chunk("vafm", VafmBytes(wType)).Take()).c_str(), true))
        << wType;
    EXPECT_EQ(file.GetCodingType(), wType);
  }
  C_KestrelFile file;
  EXPECT_TRUE(file.CheckFormat(Write("in", MonoVef(8).Take()).c_str(), true));
  EXPECT_EQ(file.GetCodingType(), 0u);
}

TEST_F(KestrelVef, SpHeaderBeforeAContainer_IsAStreamAndNoContainer) {
  const std::string strPath = Write("in", C_SpBytes().ID(32).Stream(MonoVef(8).Take()).Take());
  C_KestrelFile file;
  EXPECT_FALSE(file.CheckFormat(strPath.c_str(), true));
}

// ---- loading

TEST_F(KestrelVef, LoadData_OfAContainer_DecodesTheStreamWithoutACallback) {
  const C_Bytes stream = C_KestrelBytes(16000).Voice(3).Take();
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, KestrelVefBytes(8, 3)));
  EXPECT_EQ(g_nPieces, 0);
  EXPECT_EQ(file.GetWavData()->GetBufferLength(), 3u * 640);
  EXPECT_EQ(PcmOf(file), DecodedAlone(stream));
  EXPECT_EQ(file.GetWavData()->GetEncType(), AUDIO_FILE_KESTREL);
  const unsigned char* pbyEncoded = file.GetWavData()->GetEncBuffer();
  EXPECT_EQ(C_Bytes(pbyEncoded, pbyEncoded + file.GetWavData()->GetEncBufferLen()), stream);
}

TEST_F(KestrelVef, DecodedSound_IsMonoInSixteenBitsWhateverThePcmIs) {
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 2, 11025, 8))
      .Chunk("data", RampBytes(6))
      .Chunk("vafm", VafmBytes(14));
  riff.Chunk("vdat", C_KestrelBytes(9600).Voice(2).Take());
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, riff));
  EXPECT_EQ(file.GetWavInfo()->GetChannels(), 1);
  EXPECT_EQ(file.GetWavInfo()->GetStoreBitsPerSample(), 16);
  EXPECT_TRUE(file.GetWavInfo()->IsValueSigned());
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), 11025u);
  EXPECT_EQ(file.GetWavInfo()->GetSampleSize(), 640u);
}

TEST_F(KestrelVef, KeepEncoded_ReadsThePcmAsStored) {
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, KestrelVefBytes(10, 3), true));
  EXPECT_EQ(g_nPieces, 0);
  EXPECT_EQ(PcmOf(file), RampBytes(10));
  EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), 0u);
}

TEST_F(KestrelVef, StreamOfAnEarlierFile_IsForgotten) {
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, KestrelVefBytes(8, 5)));
  ASSERT_TRUE(Load(file, KestrelVefBytes(10, 3), true));
  EXPECT_EQ(PcmOf(file), RampBytes(10));
  EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), 0u);
  EXPECT_EQ(file.GetWavData()->GetEncType(), AUDIO_FILE_UNKNOWN);
  EXPECT_FALSE(file.WriteFile(Path("out").c_str(), false, false, nullptr, false, 0));
  EXPECT_THAT(Entries(), ElementsAre("in"));
}

TEST_F(KestrelVef, ContainerWithoutAStream_LoadsOnlyAsStored) {
  C_KestrelFile file;
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vafm", VafmBytes(14))));
  EXPECT_TRUE(Load(file, MonoVef(8).Chunk("vafm", VafmBytes(14)), true));
}

TEST_F(KestrelVef, DamagedStreams_AreFalse) {
  C_KestrelFile file;
  const C_Bytes stream = C_KestrelBytes(16000).Voice(1).Take();
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vdat", {1, 2, 3})));
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vdat", C_KestrelBytes(7300).Take())));
  EXPECT_FALSE(Load(file, MonoVef(8).Chunk("vdat", 4096, stream)));
  EXPECT_TRUE(Load(file, MonoVef(8).Chunk("vdat", stream)));
}

TEST_F(KestrelVef, EventsOfAContainer_AreLoadedOnceAlthoughALoadIsTriedTwice) {
  // Both attempts load the same container. The second must not add its events again.
  C_RiffBytes riff = KestrelVefBytes(8, 2);
  riff.Chunk("cue ", CueBytes({{1, 5, 5}})).Chunk("LIST", AdtlBytes({LablBytes(1, "(65538,7)")}));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, riff));
  ASSERT_TRUE(Load(file, riff));
  EXPECT_THAT(VefEventsOf(file), ElementsAre(S_VefEventSeen{1, 2, 7, 5}));
}

TEST_F(KestrelVef, Factory_GivesAKestrelFile) {
  C_WavFileFormat format;
  const std::string strPath = Write("in", KestrelVefBytes(8, 2).Take());
  for (const bool bKeepEncoded : {false, true}) {
    const C_WavFilePtr file(
        format.CreateWavFile(strPath.c_str(), true, bKeepEncoded, nullptr, nullptr));
    ASSERT_NE(dynamic_cast<C_KestrelFile*>(file.get()), nullptr);
    EXPECT_EQ(file->GetWavData()->GetBufferLength(), bKeepEncoded ? 8u : 1280u);
  }
  const C_WavFilePtr opened(format.OpenWavFile(strPath.c_str()));
  ASSERT_NE(dynamic_cast<C_KestrelFile*>(opened.get()), nullptr);
  EXPECT_EQ(opened->GetWavInfo()->GetByteLength(), 8u);
  EXPECT_EQ(opened->GetWavDataBuffer(), nullptr);
}

// ---- saving

TEST_F(KestrelVef, WriteFile_WithoutEncoding_WritesAContainer) {
  const auto sound = MonoSound(TestVoice(320));
  const C_Bytes file = Converted(*sound);
  EXPECT_EQ(file.size(), 762u);
  EXPECT_EQ(C_Bytes(file.begin(), file.begin() + 12),
            Join({Ascii("RIFF"), U32(754), Ascii("VEFF")}));
  EXPECT_THAT(ChunkNames(file), ElementsAre("fmt ", "data", "vafm", "vdat"));
  EXPECT_EQ(ChunkNamed(file, "vafm"), VafmBytes(14));
  EXPECT_EQ(ChunkNamed(file, "vdat").size(), 46u);
  EXPECT_EQ(ChunkNamed(file, "data").size(), 640u);
}

TEST_F(KestrelVef, Stream_StandsBeforeTheExtraChunks) {
  const auto sound = ExampleSound({}, 400);
  AddAnnotations(*sound);
  EXPECT_THAT(ChunkNames(Converted(*sound)),
              ElementsAre("fmt ", "data", "cue ", "smpl", "LIST", "vafm", "vdat", "note"));
}

TEST_F(KestrelVef, StreamOfAContainer_IsTheOneThatIsWrittenByItself) {
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(24000);
  const C_Bytes file = Converted(*sound);
  EXPECT_EQ(ChunkNamed(file, "vafm"),
            Join({U16(256), U16(14), U16(16000), U32(24000), {1, 0}, U32(0)}));
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("bare").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(ChunkNamed(file, "vdat"), Content("bare"));
}

TEST_F(KestrelVef, StereoSound_KeepsItsPcmBesideAMonoStream) {
  const auto sound = ExampleSound({.dwSampleRate = 8000, .wChannels = 2}, 700);
  const C_Bytes file = Converted(*sound);
  EXPECT_EQ(ChunkNamed(file, "fmt "), FmtBytes(1, 2, 8000, 16));
  EXPECT_EQ(ChunkNamed(file, "data").size(), 2800u);
  EXPECT_EQ(ChunkNamed(file, "vafm")[10], 2);
  C_KestrelFile loaded;
  ASSERT_TRUE(loaded.LoadByName(Path("vef").c_str(), false, nullptr, nullptr));
  EXPECT_EQ(PcmOf(loaded), DecodedAlone(ChunkNamed(file, "vdat")));
  EXPECT_EQ(loaded.GetWavInfo()->GetChannels(), 1);
}

TEST_F(KestrelVef, ConvertedAndCreatedAgain_GivesTheSourcesPcmOrTheDecodedStream) {
  const auto sound = MonoSound(TestVoice(3200));
  sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, 1600, "", 7);
  const C_Bytes file = Converted(*sound);
  C_WavFileFormat format;
  const C_WavFilePtr stored(
      format.CreateWavFile(Path("vef").c_str(), true, true, nullptr, nullptr));
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(SamplesOf(stored->GetWavData()), SamplesOf(sound.get()));
  EXPECT_THAT(VefEventsOf(*stored), ElementsAre(S_VefEventSeen{1, 2, 7, 1600}));
  const C_WavFilePtr decoded(
      format.CreateWavFile(Path("vef").c_str(), true, false, nullptr, nullptr));
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(PcmOf(*decoded), DecodedAlone(ChunkNamed(file, "vdat")));
  EXPECT_THAT(VefEventsOf(*decoded), ElementsAre(S_VefEventSeen{1, 2, 7, 1600}));
}

TEST_F(KestrelVef, LoadedStream_IsWrittenUnchangedUnlessForced) {
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, KestrelVefBytes(8, 5)));
  const C_Bytes stream = C_KestrelBytes(16000).Voice(5).Take();
  file.GetAudioCodecParam()->SetBitRate(32000);
  EXPECT_EQ(ChunkNamed(Converted(*file.GetWavData()), "vdat"), stream);
  EXPECT_NE(ChunkNamed(Converted(*file.GetWavData(), true), "vdat"), stream);
  ASSERT_TRUE(file.WriteFile(Path("vef").c_str(), false, false, nullptr, false, 0));
  EXPECT_EQ(ChunkNamed(Content("vef"), "vdat"), stream);
}

TEST_F(KestrelVef, SoundKeptAsStored_HasNoStreamToReuse) {
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, KestrelVefBytes(640, 5), true));
  EXPECT_FALSE(file.WriteFile(Path("out").c_str(), false, false, nullptr, false, 0));
  EXPECT_FALSE(file.WriteFile(Path("out").c_str(), true, false, nullptr, false, 0));
  EXPECT_THAT(Entries(), ElementsAre("in"));
  EXPECT_TRUE(file.WriteFile(Path("out").c_str(), false, false, nullptr, true, 0));
}

TEST_F(KestrelVef, EncodingThatFails_LeavesTheOldFile) {
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(8000);
  const std::string strPath = Write("vef", Ascii("before"));
  EXPECT_FALSE(sound->Convert(AUDIO_FILE_KESTREL, strPath.c_str(), false, false, nullptr, true, 0));
  EXPECT_EQ(Content("vef"), Ascii("before"));
}

TEST_F(KestrelVef, WithACodecHead_SixBytesStandBeforeTheStream) {
  const auto sound = MonoSound(TestVoice(2000));
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("bare").c_str(), true, false, nullptr, false, 0));
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("head").c_str(), true, true, nullptr, false, 0));
  EXPECT_EQ(Content("head"), Join({{0x0E, 0x00, 0x80, 0x3E, 0x00, 0x00}, Content("bare")}));
}

TEST_F(KestrelVef, CodecHeadOnAFullDisk_IsFalse) {
  const auto sound = MonoSound(TestVoice(2000));
  for (std::size_t cbLimit = 0; cbLimit < 8; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    EXPECT_FALSE(
        sound->Convert(AUDIO_FILE_KESTREL, Path("head").c_str(), true, true, nullptr, false, 0))
        << cbLimit;
  }
}

TEST_F(KestrelVef, Convert_HasNoKindForPlainContainers) {
  const auto sound = MonoSound({1, 2});
  for (const unsigned int dwType : {0x1001U, 0xFFFFU, 0U, 1U}) {
    EXPECT_FALSE(sound->Convert(static_cast<tagAudioFileType>(dwType), Path("out").c_str(), false,
                                true, nullptr, false, 0))
        << dwType;
  }
  EXPECT_THAT(Entries(), IsEmpty());
}

}  // namespace
