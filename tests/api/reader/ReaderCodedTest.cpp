// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "HeronBytes.h"
#include "KestrelBytes.h"
#include "ReadSounds.h"
#include "RiffBytes.h"
#include "SpBytes.h"

namespace {

using api::test::FailureOfOpening;
using api::test::OpenBytes;
using api::test::SamplesOf;

C_Bytes Kestrel(std::size_t nFrames, unsigned int dwBitRate = 16000) {
  return C_KestrelBytes(dwBitRate).Voice(nFrames).Take();
}
C_Bytes Heron(std::size_t nKind, int nSampleRate) {
  return C_HeronBytes(heron::test::kKinds[nKind], TestVoice(2500), nSampleRate).Take();
}
C_Bytes HeadBytes(std::uint16_t wType, std::uint16_t wRate, std::uint16_t wVersion = 0) {
  return Join({U16(wType), U16(wRate), U16(wVersion)});
}

}  // namespace

TEST(ReaderCoded, KestrelAfterAnSpHeader_HasTheRateOfTheHeader) {
  const C_Bytes file = C_SpBytes().Freq(22050).Values(1, 2, 3, 4).Stream(Kestrel(5, 24000)).Take();
  const auto reader = OpenBytes(file);
  const voxplay_info info = reader->Info();
  EXPECT_EQ(info.container, std::uint32_t{VOXPLAY_CONTAINER_SP});
  EXPECT_EQ(info.codec, std::uint32_t{VOXPLAY_CODEC_KESTREL});
  EXPECT_EQ(info.sample_rate, 22050u);
  EXPECT_EQ(info.channels, 1u);
  EXPECT_EQ(info.frames, 1600u);
  EXPECT_EQ(info.bit_rate, 24000u);
  EXPECT_EQ(info.bits_per_sample, 0u);
  EXPECT_EQ(info.stored_bits, 0u);
  const voxplay_headers& headers = reader->Headers();
  EXPECT_EQ(headers.has_sp, 1u);
  EXPECT_EQ(headers.sp_version, 254u);
  EXPECT_EQ(headers.sp_identifier, 14u);
  EXPECT_EQ(headers.sp_format, 16u);
  EXPECT_EQ(headers.sp_sample_rate, 22050u);
  EXPECT_EQ(headers.sp_value_30, 1u);
  EXPECT_EQ(headers.sp_value_34, 2u);
  EXPECT_EQ(headers.sp_value_36, 3u);
  EXPECT_EQ(headers.sp_value_37, 4u);
  EXPECT_EQ(headers.has_head, 0u);
}

TEST(ReaderCoded, Version255_StillCountsAs48Bytes) {
  C_Bytes file = C_SpBytes().Version(255).Gap(0xABCD).Take();
  file.resize(48);
  const auto reader = OpenBytes(Join({file, Kestrel(2)}));
  EXPECT_EQ(reader->Headers().sp_version, 255u);
  EXPECT_EQ(reader->Headers().sp_sample_rate, 16000u);
  EXPECT_EQ(reader->Info().frames, 640u);
}

TEST(ReaderCoded, KestrelThatTheEndCuts_TellsWhatItClaimed) {
  const C_Bytes whole = C_SpBytes().Stream(Kestrel(10)).Take();
  EXPECT_EQ(OpenBytes(whole)->Info().claimed_frames, 3200u);
  EXPECT_EQ(OpenBytes(whole)->Info().is_cut, 0u);
  const C_Bytes betweenFrames(whole.begin(), whole.end() - 80);
  EXPECT_EQ(OpenBytes(betweenFrames)->Info().frames, 2560u);
  EXPECT_EQ(OpenBytes(betweenFrames)->Info().claimed_frames, 3200u);
  EXPECT_EQ(OpenBytes(betweenFrames)->Info().is_cut, 1u);
  // The frame that is left in part counts as one, and as damaged.
  const C_Bytes withinAFrame(whole.begin(), whole.end() - 1);
  EXPECT_EQ(OpenBytes(withinAFrame)->Info().frames, 3200u);
  EXPECT_EQ(OpenBytes(withinAFrame)->Info().is_cut, 1u);
}

TEST(ReaderCoded, HeronThatTheEndCuts_TellsWhatItClaimed) {
  const C_Bytes stream = C_HeronBytes(heron::test::kKinds[0], TestVoice(100000), 8000).Take();
  const C_Bytes whole = C_SpBytes().ID(32).Freq(8000).Stream(stream).Take();
  EXPECT_EQ(OpenBytes(whole)->Info().claimed_frames, 100000u);
  EXPECT_EQ(OpenBytes(whole)->Info().is_cut, 0u);
  const C_Bytes half(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
  const auto reader = OpenBytes(half);
  EXPECT_LT(reader->Info().frames, 70000u);
  EXPECT_GT(reader->Info().frames, 30000u);
  EXPECT_EQ(reader->Info().claimed_frames, 100000u);
  EXPECT_EQ(reader->Info().is_cut, 1u);
}

TEST(ReaderCoded, HeronThatLacksItsEvents_IsCut) {
  C_Bytes stream = Heron(0, 8000);
  const auto qwEnd = stream.size();
  stream[1] = static_cast<std::uint8_t>(qwEnd);
  stream[2] = static_cast<std::uint8_t>(qwEnd >> 8U);
  const auto Info = [](const C_Bytes& bytes) {
    return OpenBytes(C_SpBytes().ID(32).Freq(8000).Stream(bytes).Take())->Info();
  };
  EXPECT_EQ(Info(stream).is_cut, 0u);
  stream[1] = static_cast<std::uint8_t>(stream[1] + 1);
  EXPECT_EQ(Info(stream).is_cut, 1u);
}

TEST(ReaderCoded, HeronAfterAnSpHeader_IsThatOfFourToSixBits) {
  for (std::uint16_t wID = 32; wID <= 34; ++wID) {
    const C_Bytes stream = Heron(wID - 32U, 8000);
    const auto reader = OpenBytes(C_SpBytes().ID(wID).Freq(8000).Stream(stream).Take());
    EXPECT_EQ(reader->Info().codec, std::uint32_t{VOXPLAY_CODEC_HERON});
    EXPECT_EQ(reader->Info().bits_per_sample, wID - 28U);
    EXPECT_EQ(SamplesOf(*reader), heron::test::Decoded(stream, 8000));
  }
}

TEST(ReaderCoded, OtherIdentifiers_AreRefusedBySentences) {
  const auto seven = FailureOfOpening(C_SpBytes().ID(7).Stream(Kestrel(2)).Take());
  EXPECT_EQ(seven.eStatus, VOXPLAY_UNSUPPORTED);
  EXPECT_EQ(seven.strText, "SP header: identifier 7 is not a codec of this library");
  for (const std::uint16_t wID : std::array<std::uint16_t, 2>{35, 36}) {
    const auto failed =
        FailureOfOpening(C_SpBytes().ID(wID).Freq(8000).Stream(Heron(wID - 32U, 8000)).Take());
    EXPECT_EQ(failed.eStatus, VOXPLAY_UNSUPPORTED);
    EXPECT_EQ(
        failed.strText,
        "SP header: identifier " + std::to_string(wID) +
            " is Heron of 2 or 3 bits, which is read from VEF files and after codec heads only");
  }
}

TEST(ReaderCoded, DamagedStreamAfterAnSpHeader_IsNotTakenForAnythingElse) {
  const auto failed = FailureOfOpening(C_SpBytes().Stream({1, 2, 3}).Take());
  EXPECT_EQ(failed.eStatus, VOXPLAY_DAMAGED);
}

TEST(ReaderCoded, CodecHeads_AreReadWithAllTypes) {
  const auto kestrel = OpenBytes(Join({HeadBytes(14, 16000), Kestrel(3)}));
  EXPECT_EQ(kestrel->Info().container, std::uint32_t{VOXPLAY_CONTAINER_HEAD});
  EXPECT_EQ(kestrel->Info().frames, 960u);
  EXPECT_EQ(kestrel->Headers().has_head, 1u);
  EXPECT_EQ(kestrel->Headers().head_type, 14u);
  EXPECT_EQ(kestrel->Headers().head_sample_rate, 16000u);
  EXPECT_EQ(kestrel->Headers().head_version, 0u);
  for (std::uint16_t wType = 32; wType <= 36; ++wType) {
    const C_Bytes stream = Heron(wType - 32U, 11025);
    const auto reader =
        OpenBytes(Join({HeadBytes(wType, 11025, 4096), stream}), VOXPLAY_READ_NO_BARE);
    EXPECT_EQ(reader->Info().container, std::uint32_t{VOXPLAY_CONTAINER_HEAD});
    EXPECT_EQ(reader->Info().sample_rate, 11025u);
    EXPECT_EQ(reader->Headers().head_version, 4096u);
    EXPECT_EQ(SamplesOf(*reader), heron::test::Decoded(stream, 11025));
  }
}

TEST(ReaderCoded, BareKestrel_IsReadAt16kHz) {
  const C_Bytes file = Kestrel(7, 32000);
  const auto reader = OpenBytes(file);
  EXPECT_EQ(reader->Info().container, std::uint32_t{VOXPLAY_CONTAINER_BARE});
  EXPECT_EQ(reader->Info().sample_rate, 16000u);
  EXPECT_EQ(reader->Info().frames, 2240u);
  EXPECT_EQ(reader->Headers().has_sp, 0u);
  const auto failed = FailureOfOpening(file, VOXPLAY_READ_NO_BARE);
  EXPECT_EQ(failed.eStatus, VOXPLAY_UNKNOWN);
}

// Its first two bytes look like the type of a codec head.
TEST(ReaderCoded, BareKestrelOf14Bytes_IsNoCodecHead) {
  const auto reader = OpenBytes(Kestrel(1, 4800));
  EXPECT_EQ(reader->Info().container, std::uint32_t{VOXPLAY_CONTAINER_BARE});
  EXPECT_EQ(reader->Info().frames, 320u);
}

TEST(ReaderCoded, UnknownBytes_AreToldTestByTest) {
  const auto failed = FailureOfOpening(Ascii("ID3 and something else"));
  EXPECT_EQ(failed.eStatus, VOXPLAY_UNKNOWN);
  EXPECT_EQ(failed.strText,
            "none of the known formats: "
            "RIFF: the file begins with \"ID3 and some\" and not with \"RIFF\", a size and a form; "
            "SP header: the file begins with \"ID3 \" and not with 00 FF 00 FF; "
            "VEF: the file does not begin with \"RIFF\" and the form \"VEFF\"; "
            "codec head: its type would be 17481, which is not 14 or 32 to 36; "
            "Kestrel stream: its bit rate would be 28257, which is not a multiple of 800 from 4800 "
            "to 32000");
}

TEST(ReaderCoded, BareStreamThatDoesNotDecode_SaysWhy) {
  const C_Bytes file = C_KestrelBytes(16000).Voice(1).Claim(2000000002).Take();
  const auto failed = FailureOfOpening(file);
  EXPECT_EQ(failed.eStatus, VOXPLAY_UNKNOWN);
  EXPECT_NE(
      failed.strText.find("Kestrel stream: found, 2000000002 bytes at 16000 bits per second, but "),
      std::string::npos)
      << failed.strText;
}

TEST(ReaderCoded, EmptyFile_IsUnknown) {
  const auto failed = FailureOfOpening({});
  EXPECT_EQ(failed.eStatus, VOXPLAY_UNKNOWN);
  EXPECT_EQ(failed.strText.substr(0, 51), "none of the known formats: RIFF: the file is empty;");
}
