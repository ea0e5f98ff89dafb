// SPDX-License-Identifier: Apache-2.0
#include "riff/WavFormat.h"

#include <gtest/gtest.h>

#include "Failed.h"
#include "GeneratedRiff.h"
#include "compressed/CompressedWav.h"
#include "compressed/WavFileCodecInfo.h"

namespace {

using api::ReadWavFormat;
using api::S_WavFormat;
using api::test::FailureOf;

// wValid of wBits bits, in a sub-format of this tag.
C_Bytes ExtensibleFmt(std::uint16_t wSubTag, std::uint16_t wChannels, std::uint16_t wBits,
                      std::uint16_t wValid) {
  return Join(
      {FmtBytes(0xFFFE, wChannels, 48000, wBits),
       U16(22),
       U16(wValid),
       U32(3),
       U16(wSubTag),
       {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}});
}

std::string TextOf(const C_Bytes& fmt) {
  return FailureOf([&] { return ReadWavFormat(fmt); }).strText;
}

}  // namespace

TEST(WavFormat, PlainPcm_IsRead) {
  const S_WavFormat format = ReadWavFormat(FmtBytes(1, 2, 44100, 16));
  EXPECT_EQ(format.eCodec, VOXPLAY_CODEC_PCM);
  EXPECT_EQ(format.wChannels, 2);
  EXPECT_EQ(format.dwSampleRate, 44100u);
  EXPECT_EQ(format.wBits, 16);
  EXPECT_EQ(format.wStoredBits, 16);
  EXPECT_EQ(format.dwBitsPerSecond, 1411200u);
  EXPECT_EQ(format.Text(), "PCM of 16 bits, 2 channels, 44100 Hz");
  EXPECT_TRUE(format.record.empty());
}

TEST(WavFormat, OddWidths_TakeWholeBytes) {
  EXPECT_EQ(ReadWavFormat(FmtBytes(1, 1, 8000, 12)).wStoredBits, 16);
  EXPECT_EQ(ReadWavFormat(FmtBytes(1, 1, 8000, 20)).wStoredBits, 24);
  EXPECT_EQ(ReadWavFormat(FmtBytes(1, 1, 8000, 3)).wStoredBits, 8);
  EXPECT_EQ(ReadWavFormat(FmtBytes(1, 1, 8000, 12)).wBits, 12);
}

TEST(WavFormat, BlockAlign_WidensOnlyWhatTheClassLibraryCannotConvert) {
  C_Bytes fmt24 = FmtBytes(1, 2, 8000, 24);
  fmt24[12] = 8;
  EXPECT_EQ(ReadWavFormat(fmt24).wStoredBits, 32);
  C_Bytes fmt16 = FmtBytes(1, 2, 8000, 16);
  fmt16[12] = 8;
  EXPECT_EQ(ReadWavFormat(fmt16).wStoredBits, 16);
  fmt24[12] = 7;
  EXPECT_EQ(ReadWavFormat(fmt24).wStoredBits, 24);
  fmt24[12] = 12;
  EXPECT_EQ(ReadWavFormat(fmt24).wStoredBits, 24);
}

TEST(WavFormat, WidthsAboveFourBytes_AreNotReadable) {
  EXPECT_TRUE(ReadWavFormat(FmtBytes(1, 1, 8000, 32)).IsReadable());
  EXPECT_FALSE(ReadWavFormat(FmtBytes(1, 1, 8000, 33)).IsReadable());
  EXPECT_FALSE(ReadWavFormat(FmtBytes(1, 1, 8000, 0xFFFF)).IsReadable());
}

TEST(WavFormat, Float_HasTwoWidths) {
  EXPECT_EQ(ReadWavFormat(FmtBytes(3, 1, 8000, 32)).eCodec, VOXPLAY_CODEC_FLOAT);
  EXPECT_TRUE(ReadWavFormat(FmtBytes(3, 1, 8000, 32)).IsReadable());
  EXPECT_TRUE(ReadWavFormat(FmtBytes(3, 1, 8000, 64)).IsReadable());
  EXPECT_FALSE(ReadWavFormat(FmtBytes(3, 1, 8000, 16)).IsReadable());
}

TEST(WavFormat, Extensible_IsWhatItsSubFormatSays) {
  const S_WavFormat pcm = ReadWavFormat(ExtensibleFmt(1, 6, 24, 20));
  EXPECT_EQ(pcm.wTag, 0xFFFE);
  EXPECT_EQ(pcm.eCodec, VOXPLAY_CODEC_PCM);
  EXPECT_EQ(pcm.wBits, 20);
  EXPECT_EQ(pcm.wStoredBits, 24);
  EXPECT_EQ(ReadWavFormat(ExtensibleFmt(1, 6, 24, 0)).wBits, 24);
  EXPECT_EQ(ReadWavFormat(ExtensibleFmt(1, 6, 24, 25)).wBits, 24);
  EXPECT_EQ(ReadWavFormat(ExtensibleFmt(3, 2, 32, 32)).eCodec, VOXPLAY_CODEC_FLOAT);
}

TEST(WavFormat, ExtensibleLaws_GetThePlainRecord) {
  const S_WavFormat mulaw = ReadWavFormat(ExtensibleFmt(7, 2, 8, 8));
  EXPECT_EQ(mulaw.eCodec, VOXPLAY_CODEC_MULAW);
  EXPECT_EQ(mulaw.record, FmtBytes(7, 2, 48000, 8));
  EXPECT_EQ(ReadWavFormat(ExtensibleFmt(6, 1, 8, 8)).eCodec, VOXPLAY_CODEC_ALAW);
}

TEST(WavFormat, OtherSubFormats_AreNamed) {
  EXPECT_EQ(TextOf(ExtensibleFmt(2, 1, 4, 4)),
            "fmt chunk: sub-format 02 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71 is not "
            "supported");
  C_Bytes fmt = ExtensibleFmt(1, 1, 16, 16);
  fmt[39] ^= 1;
  EXPECT_EQ(FailureOf([&] { return ReadWavFormat(fmt); }).eStatus, VOXPLAY_UNSUPPORTED);
  fmt.resize(39);
  EXPECT_EQ(TextOf(fmt), "fmt chunk: an extensible format of 39 bytes is too short");
}

TEST(WavFormat, Refusals_AreSentences) {
  EXPECT_EQ(TextOf(FmtBytes(0x11, 1, 8000, 4)), "fmt chunk: format tag 0x0011 is not supported");
  EXPECT_EQ(TextOf(FmtBytes(1, 0, 8000, 16)), "fmt chunk: it names no channels");
  EXPECT_EQ(TextOf(FmtBytes(1, 1, 8000, 0)), "fmt chunk: its samples have no bits");
  EXPECT_EQ(TextOf(C_Bytes(15)), "fmt chunk: 15 bytes are too few for a format");
  EXPECT_EQ(TextOf(BlockFmt({11, 1, 0, 17, 4})), "fmt chunk: its blocks have no bytes");
  EXPECT_EQ(TextOf(FmtBytes(2, 1, 8000, 4)),
            "fmt chunk: 16 bytes are too few for format tag 0x0002");
}

TEST(WavFormat, Blocks_TellTheirBitRate) {
  // 24 bytes for 12 frames of two channels.
  EXPECT_EQ(ReadWavFormat(BlockFmt({2, 2, 24, 12, 4})).dwBitsPerSecond, 128000u);
  EXPECT_EQ(ReadWavFormat(BlockFmt({2, 2, 24, 0, 4})).dwBitsPerSecond, 0u);
  EXPECT_EQ(ReadWavFormat(BlockFmt({7, 2, 2, 0, 8})).dwBitsPerSecond, 128000u);
}

TEST(WavFormat, RecordsOfTheClassLibrary_AreTakenAndRefusedAlike) {
  api::test::C_Random random(2);
  int nTaken = 0;
  for (int i = 0; i < 20000; ++i) {
    C_Bytes fmt = api::test::RandomFmt(random);
    if (random.OneIn(2)) fmt = api::test::Damaged(fmt, random);
    if (fmt.size() > 1 && fmt[1] == 0 && fmt[0] == 3) continue;  // float is an extra
    C_WavFileCodecInfo codecInfo;
    const bool bTaken = codecInfo.SetFormat(fmt);
    const auto failed = FailureOf([&] { return ReadWavFormat(fmt); });
    EXPECT_EQ(failed.eStatus == VOXPLAY_OK, bTaken) << i << failed.strText;
    if (!bTaken || failed.eStatus != VOXPLAY_OK) continue;
    ++nTaken;
    const S_WavFormat format = ReadWavFormat(fmt);
    EXPECT_EQ(format.wChannels, codecInfo.GetPCMWAVEFORMAT().wChannels);
    EXPECT_EQ(format.dwSampleRate, codecInfo.GetPCMWAVEFORMAT().dwSamplesPerSec);
    if (format.IsSampled()) continue;
    EXPECT_EQ(format.IsReadable(), compressedwav::MakeDecoder(codecInfo) != nullptr);
    EXPECT_TRUE(std::ranges::equal(format.record, codecInfo.GetRecord()));
  }
  EXPECT_GT(nTaken, 5000);
}
