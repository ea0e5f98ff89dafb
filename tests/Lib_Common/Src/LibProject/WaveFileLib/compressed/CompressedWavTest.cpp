// SPDX-License-Identifier: Apache-2.0
//
// Compressed sounds in RIFF files, through the file object and the factory.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "CodecSupport.h"
#include "FolderTest.h"
#include "LargestAllocation.h"
#include "StdioFile.h"
#include "WavBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "compressed/CompressedWav.h"
#include "compressed/WavTags.h"
#include "sound/WavData.h"

namespace {

// A compressed sound and what it decodes to.
struct S_Kind {
  S_Blocks blocks;
  C_Bytes encoded;
  C_Samples samples;
  unsigned int dwCodingType;
};

C_Bytes Twice(const C_Bytes& bytes) { return Join({bytes, bytes}); }

std::vector<S_Kind> AllKinds() {
  C_Bytes threeBits = Join({U16(100), {0, 0, 0x88, 0xC6, 0xFA}, C_Bytes(9)});
  C_Samples threeBitSamples = {100, 101, 105, 113, 127, 125, 119, 109, 94, 96, 98, 100, 102};
  for (int i = 103; i <= 122; ++i) threeBitSamples.push_back(static_cast<short>(i));
  return {
      {{WAVE_TAG_MS_ADPCM, 2, 16, 4},
       Twice(Join({{0, 1}, Shorts({16, 32, 100, 1000, 50, 900}), {0x1F, 0x78}})),
       {50, 900, 100, 1000, 116, 1068, 228, 912, 50, 900, 100, 1000, 116, 1068, 228, 912},
       1},
      {{WAVE_TAG_ALAW, 1, 1, 0, 8}, {0xD5, 0x55, 0x80, 0x25}, {0, -32768, 5376, -16384}, 0},
      {{WAVE_TAG_MULAW, 2, 2, 0, 8}, {0x00, 0x7F, 0x80, 0xFE}, {-32735, -1, 32734, 110}, 0},
      {{WAVE_TAG_DVI_ADPCM, 1, 8, 9, 4},
       {100, 0, 0, 0, 0x70, 0xF8, 0x12, 0x34},
       {100, 100, 111, 109, 84, 102, 112, 140, 165},
       2},
      {{WAVE_TAG_DVI_ADPCM, 1, 16, 33, 3}, threeBits, threeBitSamples, 2},
  };
}

S_Kind KindOf(tagWaveFormatTag eTag) {
  const std::vector<S_Kind> kinds = AllKinds();
  return *std::ranges::find_if(kinds, [=](const S_Kind& kind) { return kind.blocks.wTag == eTag; });
}

C_Bytes PcmBytes(const C_Samples& samples) {
  C_Bytes bytes;
  for (const short nSample : samples) {
    bytes = Join({bytes, U16(static_cast<std::uint16_t>(nSample))});
  }
  return bytes;
}

C_RiffBytes FileOf(const S_Kind& kind, std::string_view formType = "WAVE") {
  return ::CompressedWav(kind.blocks, kind.encoded, formType);
}

// A file that claims dwClaimed bytes of mu-law codes and holds these codes.
C_RiffBytes MuLawFile(std::uint32_t dwClaimed, const C_Bytes& codes) {
  C_RiffBytes riff("WAVE");
  return riff.Chunk("fmt ", BlockFmt({WAVE_TAG_MULAW, 1, 1, 0, 8})).Chunk("data", dwClaimed, codes);
}

// nBlocks blocks of 8 bytes that claim to hold 65535 samples each.
C_RiffBytes BoastingFile(std::size_t nBlocks) {
  return ::CompressedWav({WAVE_TAG_DVI_ADPCM, 1, 8, 65535, 4}, C_Bytes(8 * nBlocks));
}

class CompressedWav : public C_FolderTest {
 protected:
  std::string File(const C_RiffBytes& riff) { return Write("sound.wav", riff.Take()); }
  C_WavObjectPtr Load(const C_RiffBytes& riff) { return LoadWav(File(riff)); }
  // Opens an object on one file, then lets it load another one under the same name.
  bool LoadsAfterChange(const C_RiffBytes& before, const C_RiffBytes& after) {
    m_file = MakeWav();
    EXPECT_TRUE(m_file->OpenByName(File(before).c_str()));
    File(after);
    return m_file->LoadData(true, nullptr, nullptr);
  }

  C_WavObjectPtr m_file;
};

}  // namespace

TEST_F(CompressedWav, EveryKind_LoadsAs16Bits) {
  for (const S_Kind& kind : AllKinds()) {
    const C_WavObjectPtr file = Load(FileOf(kind));
    EXPECT_EQ(PcmOf(*file), PcmBytes(kind.samples)) << kind.blocks.wTag;
    I_WavInfo& info = *file->GetWavInfo();
    EXPECT_EQ(info.GetSampleRate(), 8000u);
    EXPECT_EQ(info.GetChannels(), kind.blocks.wChannels);
    EXPECT_EQ(info.GetByteLength(), 2 * kind.samples.size());
    EXPECT_EQ(info.GetBitsPerSample(), 16);
    EXPECT_EQ(info.GetStoreBitsPerSample(), 16);
    EXPECT_TRUE(info.IsValueSigned());
    EXPECT_EQ(file->GetCodingType(), kind.dwCodingType) << kind.blocks.wTag;
    EXPECT_EQ(file->GetWavData()->GetEncType(), AUDIO_FILE_WAVE);
    EXPECT_EQ(file->GetWavData()->GetEncBuffer(), nullptr) << "the encoded form is not kept";
  }
}

TEST_F(CompressedWav, EveryKind_LoadsFromBothForms) {
  for (const S_Kind& kind : AllKinds()) {
    const C_WavObjectPtr file = Load(FileOf(kind, "VEMD"));
    EXPECT_EQ(PcmOf(*file), PcmBytes(kind.samples)) << kind.blocks.wTag;
    EXPECT_EQ(file->GetFileFormat(), AUDIO_FILE_VEMD);
    EXPECT_EQ(file->GetWavData()->GetEncType(), AUDIO_FILE_VEMD);
  }
}

TEST_F(CompressedWav, KeepEncoded_HasNoInfluence) {
  for (const S_Kind& kind : AllKinds()) {
    const C_WavObjectPtr file = MakeWav();
    ASSERT_TRUE(file->LoadByName(File(FileOf(kind)).c_str(), false, "option", nullptr));
    EXPECT_EQ(PcmOf(*file), PcmBytes(kind.samples)) << kind.blocks.wTag;
  }
}

TEST_F(CompressedWav, Length_IsKnownWithoutTheSamples) {
  for (const S_Kind& kind : AllKinds()) {
    const C_WavObjectPtr file = MakeWav();
    ASSERT_TRUE(file->OpenByName(File(FileOf(kind)).c_str()));
    EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 2 * kind.samples.size()) << kind.blocks.wTag;
    EXPECT_EQ(file->GetWavInfo()->GetStoreBitsPerSample(), 16);
    EXPECT_TRUE(file->GetWavInfo()->IsValueSigned());
    EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  }
}

TEST_F(CompressedWav, G711_LeavesTheCodingTypeAsItWas) {
  const std::vector<S_Kind> kinds = AllKinds();
  const C_WavObjectPtr file = MakeWav();
  EXPECT_EQ(file->GetCodingType(), 0u);
  EXPECT_TRUE(file->CheckFormat(File(FileOf(kinds[2])).c_str(), false));
  EXPECT_EQ(file->GetCodingType(), 0u);
  EXPECT_TRUE(file->CheckFormat(File(FileOf(kinds[3])).c_str(), false));
  EXPECT_EQ(file->GetCodingType(), C_WavFile::kCodingDviAdpcm);
  for (const std::size_t nKind : {std::size_t{1}, std::size_t{2}}) {
    EXPECT_TRUE(file->CheckFormat(File(FileOf(kinds[nKind])).c_str(), false));
    EXPECT_EQ(file->GetCodingType(), C_WavFile::kCodingDviAdpcm);
  }
  EXPECT_TRUE(file->CheckFormat(File(FileOf(kinds[0])).c_str(), false));
  EXPECT_EQ(file->GetCodingType(), C_WavFile::kCodingMSAdpcm);
  EXPECT_TRUE(file->CheckFormat(File(MonoWav(8)).c_str(), false));
  EXPECT_EQ(file->GetCodingType(), C_WavFile::kCodingLinear);
}

TEST_F(CompressedWav, DviOfOtherWidths_OpensAndDoesNotLoad) {
  for (const std::uint16_t wBits :
       std::initializer_list<std::uint16_t>{0, 1, 2, 5, 8, 16, 0xFFFF}) {
    S_Kind kind = KindOf(WAVE_TAG_DVI_ADPCM);
    kind.blocks.wBits = wBits;
    const std::string strPath = File(FileOf(kind));
    EXPECT_TRUE(Checks(strPath)) << wBits;
    const C_WavObjectPtr file = MakeWav();
    ASSERT_TRUE(file->OpenByName(strPath.c_str())) << wBits;
    EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 8u) << "the length of the data";
    EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), 16);
    EXPECT_EQ(file->GetCodingType(), C_WavFile::kCodingDviAdpcm);
    EXPECT_FALSE(file->LoadData(true, nullptr, nullptr)) << wBits;
    EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  }
}

TEST_F(CompressedWav, WidthOfTheOtherKinds_DoesNotMatter) {
  for (S_Kind kind : AllKinds()) {
    if (kind.blocks.wTag == WAVE_TAG_DVI_ADPCM) continue;
    for (const std::uint16_t wBits : std::initializer_list<std::uint16_t>{0, 3, 16, 0xFFFF}) {
      kind.blocks.wBits = wBits;
      EXPECT_EQ(PcmOf(*Load(FileOf(kind))), PcmBytes(kind.samples)) << kind.blocks.wTag;
    }
  }
}

// --- What a file claims

TEST_F(CompressedWav, CutFile_IsAsLongAsTheBytesItHolds) {
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(File(MuLawFile(1000, C_Bytes(33, 0xFF))).c_str()));
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 2000u) << "as the file says";
  ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 66u) << "as there is";
  EXPECT_EQ(PcmOf(*file), C_Bytes(66));
}

TEST_F(CompressedWav, LengthBeyondTheFile_IsNotAllocated) {
  const std::string strPath = File(MuLawFile(0x7FFFFFFF, {0x80, 0x00}));
  ResetLargestAllocation();
  EXPECT_EQ(PcmOf(*LoadWav(strPath)), PcmBytes({32734, -32735}));
  EXPECT_LT(LargestAllocation(), 100000u);
}

TEST_F(CompressedWav, SoundOf4GiB_IsRefused) {
  EXPECT_TRUE(Checks(File(MuLawFile(0x7FFFFFFF, {}))));
  EXPECT_FALSE(Checks(File(MuLawFile(0x80000000, {}))));
  EXPECT_FALSE(Opens(File(MuLawFile(0xFFFFFFFF, {}))));
}

TEST_F(CompressedWav, SamplesThatABlockDoesNotHold_AreSilent) {
  S_Kind kind = KindOf(WAVE_TAG_DVI_ADPCM);
  kind.blocks.wSamplesPerBlock = 12;
  kind.encoded = Twice(kind.encoded);
  C_Samples expected = kind.samples;
  expected.resize(12);
  expected.insert(expected.end(), kind.samples.begin(), kind.samples.end());
  expected.resize(24);
  EXPECT_EQ(PcmOf(*Load(FileOf(kind))), PcmBytes(expected));
}

TEST_F(CompressedWav, BlocksThatClaimTooMuch_AreSilentUpTo64MiB) {
  const C_WavObjectPtr file = Load(BoastingFile(512));
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 512u * 131070);
  const unsigned char* pbyPcm = file->GetWavDataBuffer();
  EXPECT_TRUE(std::all_of(pbyPcm, pbyPcm + 512u * 131070, [](int n) { return n == 0; }));
}

TEST_F(CompressedWav, BlocksThatClaimFarTooMuch_AreRefusedWithoutAllocating) {
  for (const std::size_t nBlocks : {std::size_t{513}, std::size_t{30000}}) {
    const std::string strPath = File(BoastingFile(nBlocks));
    const C_WavObjectPtr file = MakeWav();
    ResetLargestAllocation();
    EXPECT_FALSE(file->LoadByName(strPath.c_str(), true, nullptr, nullptr)) << nBlocks;
    EXPECT_LT(LargestAllocation(), 1000000u);
    EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  }
}

TEST_F(CompressedWav, SoundWithoutData_IsEmpty) {
  for (S_Kind kind : AllKinds()) {
    kind.encoded.clear();
    EXPECT_EQ(Load(FileOf(kind))->GetWavInfo()->GetByteLength(), 0u) << kind.blocks.wTag;
    C_RiffBytes noData("WAVE");
    EXPECT_EQ(Load(noData.Chunk("fmt ", BlockFmt(kind.blocks)))->GetWavInfo()->GetByteLength(), 0u);
  }
}

TEST_F(CompressedWav, ZerosThatWouldDivide_AreRefused) {
  for (const S_Kind& kind : AllKinds()) {
    S_Kind damaged = kind;
    damaged.blocks.wChannels = 0;
    EXPECT_FALSE(Checks(File(FileOf(damaged)))) << kind.blocks.wTag;
    damaged = kind;
    damaged.blocks.wBlockAlign = 0;
    const bool bBlocks = wavtags::Find(kind.blocks.wTag)->bBlocks;
    EXPECT_EQ(Loads(File(FileOf(damaged))), !bBlocks) << kind.blocks.wTag;
  }
}

// --- The record that counts

TEST_F(CompressedWav, Load_ReadsTheFormatAgain) {
  S_Kind kind = KindOf(WAVE_TAG_MS_ADPCM);
  const C_RiffBytes before = FileOf(kind);
  kind.blocks.dwRate = 11025;
  kind.blocks.wChannels = 1;
  kind.blocks.wSamplesPerBlock = 2;
  ASSERT_TRUE(LoadsAfterChange(before, FileOf(kind)));
  EXPECT_EQ(m_file->GetWavInfo()->GetSampleRate(), 11025u);
  EXPECT_EQ(m_file->GetWavInfo()->GetChannels(), 1);
  EXPECT_EQ(m_file->GetWavInfo()->GetByteLength(), 8u);
}

TEST_F(CompressedWav, FormatThatChangedToAnotherKind_IsRefused) {
  const std::vector<S_Kind> kinds = AllKinds();
  EXPECT_FALSE(LoadsAfterChange(FileOf(kinds[0]), FileOf(kinds[3])));
  EXPECT_FALSE(LoadsAfterChange(FileOf(kinds[1]), FileOf(kinds[2])));
  EXPECT_FALSE(LoadsAfterChange(FileOf(kinds[2]), MonoWav(8)));
  EXPECT_FALSE(LoadsAfterChange(FileOf(kinds[3]), MonoWav(64)));
  EXPECT_EQ(m_file->GetWavDataBuffer(), nullptr);
}

TEST_F(CompressedWav, FormatThatWasCutMeanwhile_IsRefused) {
  for (const S_Kind& kind : AllKinds()) {
    const std::size_t cbRecord = InfoOf(kind.blocks).GetRecord().size();
    const C_WavObjectPtr file = MakeWav();
    for (std::size_t cb = 0; cb < cbRecord; ++cb) {
      const std::string strPath = File(FileOf(kind));
      ASSERT_TRUE(file->OpenByName(strPath.c_str()));
      std::filesystem::resize_file(strPath, 20 + cb);
      EXPECT_FALSE(file->LoadData(true, nullptr, nullptr)) << kind.blocks.wTag << " " << cb;
    }
    const std::string strPath = File(FileOf(kind));
    ASSERT_TRUE(file->OpenByName(strPath.c_str()));
    std::filesystem::resize_file(strPath, 20 + cbRecord);
    EXPECT_TRUE(file->LoadData(true, nullptr, nullptr)) << "without a single byte of data";
    EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 0u);
  }
}

TEST_F(CompressedWav, LaterFormat_CountsWhereverItStands) {
  const S_Kind kind = KindOf(WAVE_TAG_MS_ADPCM);
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 44100, 16))
      .Chunk("data", kind.encoded)
      .Chunk("fmt ", BlockFmt(kind.blocks));
  EXPECT_EQ(PcmOf(*Load(riff)), PcmBytes(kind.samples));
}

TEST_F(CompressedWav, LoadingTwice_GivesTheSame) {
  for (const S_Kind& kind : AllKinds()) {
    const C_WavObjectPtr file = Load(FileOf(kind));
    ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
    EXPECT_EQ(PcmOf(*file), PcmBytes(kind.samples)) << kind.blocks.wTag;
    ASSERT_TRUE(file->LoadByName(File(MonoWav(6)).c_str(), true, nullptr, nullptr));
    EXPECT_EQ(PcmOf(*file), RampBytes(6)) << "and a linear file follows";
  }
}

TEST_F(CompressedWav, CallersMemory_IsNotTouched) {
  C_Bytes memory = RampBytes(4);
  C_WavData data;
  data.AttachBuffer(memory.data(), 4);
  C_WavFile file;
  file.AttachWavData(&data);
  const S_Kind kind = KindOf(WAVE_TAG_DVI_ADPCM);
  ASSERT_TRUE(file.LoadByName(File(FileOf(kind)).c_str(), true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(file), PcmBytes(kind.samples));
  EXPECT_EQ(memory, RampBytes(4));
  EXPECT_EQ(file.DetachWavData(), &data);
}

// --- What follows a load

TEST_F(CompressedWav, Annotations_StandAtSamplesOfTheDecodedSound) {
  C_RiffBytes riff = FileOf(KindOf(WAVE_TAG_DVI_ADPCM));
  riff.Chunk("cue ", CueBytes({{1, 5, 5}, {2, 6, 6}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "u_3_7"), LablBytes(2, "VX_PCM"), LtxtBytes(2, 2)}));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(EventsOf(*file), (std::vector<S_EventSeen>{{3, 7, 5}}));
  EXPECT_EQ(RegionsOf(*file), (C_RangesSeen{{6, 7}}));
}

TEST_F(CompressedWav, WrittenFile_IsLinearAndKeepsItsFactChunk) {
  for (const S_Kind& kind : AllKinds()) {
    const C_WavObjectPtr file = Load(FileOf(kind).Chunk("fact", U32(77)));
    ASSERT_TRUE(::Write(*file, Path("linear.wav")));
    const C_Bytes pcm = PcmBytes(kind.samples);
    C_RiffBytes expected("WAVE");
    expected.Chunk("fmt ", FmtBytes(1, kind.blocks.wChannels, 8000, 16))
        .Chunk("data", pcm)
        .Chunk("fact", U32(77));
    EXPECT_EQ(Content("linear.wav"), expected.Take()) << kind.blocks.wTag;
  }
}

TEST_F(CompressedWav, Factory_OpensLoadsAndConvertsEveryKind) {
  C_WavFileFormat format;
  for (const S_Kind& kind : AllKinds()) {
    const std::string strPath = File(FileOf(kind));
    EXPECT_EQ(format.GetFileFormat(strPath.c_str()), AUDIO_FILE_WAVE);
    EXPECT_TRUE(format.IsSupportedFormat(strPath.c_str()));
    const C_WavFilePtr file(format.CreateWavFile(strPath.c_str(), true, true, nullptr, nullptr));
    ASSERT_NE(file, nullptr) << kind.blocks.wTag;
    ASSERT_TRUE(
        file->Convert(AUDIO_FILE_WAVE, Path("out.wav").c_str(), true, false, nullptr, false, 0));
    EXPECT_EQ(PcmOf(*LoadWav(Path("out.wav"))), PcmBytes(kind.samples));
    const C_WavFilePtr opened(format.OpenWavFile(strPath.c_str()));
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->GetWavInfo()->GetByteLength(), 2 * kind.samples.size());
  }
}

// --- The steps by themselves

TEST_F(CompressedWav, Decoders_ExistForCompressedTagsOnly) {
  for (const S_Kind& kind : AllKinds()) {
    EXPECT_NE(compressedwav::MakeDecoder(InfoOf(kind.blocks)), nullptr) << kind.blocks.wTag;
  }
  EXPECT_EQ(compressedwav::MakeDecoder(InfoOf(FmtBytes(1, 1, 8000, 16))), nullptr);
  EXPECT_EQ(compressedwav::MakeDecoder({}), nullptr);
}

TEST_F(CompressedWav, FormatRecord_IsReadUnderItsOwnTagOnly) {
  for (const S_Kind& kind : AllKinds()) {
    // The same length as the longest record, so that only the tags tell the kinds apart.
    C_Bytes bytes = BlockFmt(kind.blocks);
    bytes.resize(50);
    vcm::C_FileReader file(vcm::OpenFile(Write("fmt", bytes).c_str(), "rb"));
    for (const tagWaveFormatTag wTag :
         {WAVE_TAG_PCM, WAVE_TAG_MS_ADPCM, WAVE_TAG_ALAW, WAVE_TAG_MULAW, WAVE_TAG_DVI_ADPCM}) {
      const auto info = compressedwav::ReadFormat(file, 0, wTag);
      ASSERT_EQ(info.has_value(), wTag == kind.blocks.wTag) << wTag;
      if (info) {
        EXPECT_EQ(info->GetFormatTag(), wTag);
      }
    }
    EXPECT_FALSE(compressedwav::ReadFormat(file, 0, 3)) << "an unknown tag";
    EXPECT_FALSE(compressedwav::ReadFormat(file, UINT64_MAX, kind.blocks.wTag));
  }
}

TEST_F(CompressedWav, BlocksThatHold4GiB_AreNotDecoded) {
  C_WavData sound;
  const C_Bytes encoded(32769);
  const S_Blocks blocks = {WAVE_TAG_DVI_ADPCM, 1, 1, 65535, 4};
  vcm::C_FileReader file(vcm::OpenFile(Write("data", encoded).c_str(), "rb"));
  EXPECT_FALSE(compressedwav::Load(InfoOf(blocks), file, 0, 32769, sound));
  EXPECT_EQ(sound.GetBuffer(), nullptr);
  EXPECT_FALSE(compressedwav::Load({}, file, 0, 32769, sound)) << "no decoder";
  vcm::C_FileReader closed;
  EXPECT_FALSE(compressedwav::Load(InfoOf(AllKinds()[0].blocks), closed, 0, 16, sound));
}
