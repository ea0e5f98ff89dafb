// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "HeronBytes.h"
#include "KestrelBytes.h"
#include "ReadSounds.h"
#include "TestInput.h"
#include "VefBytes.h"

namespace {

using api::C_Reader;
using api::OpenInputSource;
using api::test::C_TestInput;
using api::test::FailureOfOpening;
using api::test::OpenBytes;
using api::test::SamplesOf;

C_Bytes HeronStream(std::size_t nKind, std::size_t nSamples) {
  return C_HeronBytes(heron::test::kKinds[nKind], TestVoice(nSamples), 16000).Take();
}

}  // namespace

TEST(ReaderVef, Pcm_IsReadUnlessTheStreamIsAskedFor) {
  const C_Bytes file = KestrelVefBytes(100, 4).Take();
  const auto pcm = OpenBytes(file);
  EXPECT_EQ(pcm->Info().container, std::uint32_t{VOXPLAY_CONTAINER_VEF});
  EXPECT_EQ(pcm->Info().codec, std::uint32_t{VOXPLAY_CODEC_PCM});
  EXPECT_EQ(pcm->Info().frames, 50u);
  EXPECT_EQ(pcm->Info().has_stream, 1u);
  EXPECT_EQ(pcm->Info().bits_per_sample, 16u);
  const auto stream = OpenBytes(file, VOXPLAY_READ_STREAM);
  EXPECT_EQ(stream->Info().container, std::uint32_t{VOXPLAY_CONTAINER_VEF});
  EXPECT_EQ(stream->Info().codec, std::uint32_t{VOXPLAY_CODEC_KESTREL});
  EXPECT_EQ(stream->Info().frames, 1280u);
  EXPECT_EQ(stream->Info().bit_rate, 16000u);
  EXPECT_EQ(stream->Info().sample_rate, 16000u);
  EXPECT_EQ(stream->Info().has_stream, 1u);
  EXPECT_EQ(SamplesOf(*stream),
            kestrel::test::DecodeWords(16000, C_KestrelBytes(16000).Voice(4).GetWords()));
}

TEST(ReaderVef, CodecRecord_IsInTheHeaders) {
  C_RiffBytes riff = MonoVef(10);
  riff.Chunk("vafm", VafmBytes(9, 255)).Chunk("vafm", {1, 2, 3});
  riff.Chunk("vafm", Join({U16(256), U16(33), U16(0xBB80), U32(12345), {2, 7}, U32(0)}));
  riff.Chunk("vafm", VafmBytes(14));
  const auto reader = OpenBytes(riff.Take());
  const voxplay_headers& headers = reader->Headers();
  EXPECT_EQ(headers.has_vafm, 1u);
  EXPECT_EQ(headers.vafm_version, 256u);
  EXPECT_EQ(headers.vafm_type, 33u);
  EXPECT_EQ(headers.vafm_sample_rate, 48000u);
  EXPECT_EQ(headers.vafm_bit_rate, 12345u);
  EXPECT_EQ(headers.vafm_channels, 2u);
  EXPECT_EQ(headers.vafm_platform, 7u);
  EXPECT_EQ(headers.has_sp, 0u);
  EXPECT_EQ(reader->Info().has_stream, 0u);
}

TEST(ReaderVef, HeronOfAllWidths_IsDecoded) {
  for (std::size_t nKind = 0; nKind < heron::test::kKinds.size(); ++nKind) {
    const C_Bytes stream = HeronStream(nKind, 3000);
    C_RiffBytes riff = MonoVef(10);
    const heron::test::S_Kind& kind = heron::test::kKinds[nKind];
    riff.Chunk("vafm", VafmBytes(static_cast<std::uint16_t>(kind.eType))).Chunk("vdat", stream);
    const auto reader = OpenBytes(riff.Take(), VOXPLAY_READ_STREAM);
    EXPECT_EQ(reader->Info().codec, std::uint32_t{VOXPLAY_CODEC_HERON});
    EXPECT_EQ(reader->Info().bits_per_sample, static_cast<std::uint32_t>(kind.nBitDepth));
    EXPECT_EQ(reader->Info().bit_rate, 16000u * static_cast<std::uint32_t>(kind.nBitDepth));
    EXPECT_EQ(reader->Info().stored_bits, 0u);
    EXPECT_EQ(SamplesOf(*reader), heron::test::Decoded(stream, 16000));
  }
}

TEST(ReaderVef, StreamOfNoNamedType_IsTriedAsBoth) {
  for (const bool bRecord : {false, true}) {
    C_RiffBytes heron = MonoVef(10);
    C_RiffBytes kestrel = MonoVef(10);
    if (bRecord) {
      heron.Chunk("vafm", VafmBytes(99));
      kestrel.Chunk("vafm", VafmBytes(99));
    }
    heron.Chunk("vdat", HeronStream(0, 1000));
    kestrel.Chunk("vdat", C_KestrelBytes(7200).Voice(2).Take());
    EXPECT_EQ(OpenBytes(heron.Take(), VOXPLAY_READ_STREAM)->Info().frames, 1000u);
    EXPECT_EQ(OpenBytes(kestrel.Take(), VOXPLAY_READ_STREAM)->Info().bit_rate, 7200u);
  }
}

TEST(ReaderVef, StreamOfTheOtherType_IsRefused) {
  C_RiffBytes riff = MonoVef(10);
  riff.Chunk("vafm", VafmBytes(14)).Chunk("vdat", HeronStream(0, 1000));
  EXPECT_NE(FailureOfOpening(riff.Take(), VOXPLAY_READ_STREAM).eStatus, VOXPLAY_OK);
}

TEST(ReaderVef, FirstOfTwoStreams_Counts) {
  C_RiffBytes riff = KestrelVefBytes(10, 3);
  riff.Chunk("vdat", C_KestrelBytes(7200).Voice(1).Take());
  EXPECT_EQ(OpenBytes(riff.Take(), VOXPLAY_READ_STREAM)->Info().frames, 960u);
}

TEST(ReaderVef, MissingEmptyAndCutStreams_AreRefused) {
  const auto textOf = [](const C_Bytes& file) {
    return FailureOfOpening(file, VOXPLAY_READ_STREAM).strText;
  };
  EXPECT_EQ(textOf(MonoVef(10).Take()), "vdat chunk: the file has no stream beside its PCM");
  EXPECT_EQ(textOf(MonoVef(10).Chunk("vdat", {}).Take()), "vdat chunk: it is empty");
  C_Bytes file = KestrelVefBytes(10, 3).Take();
  file.pop_back();
  EXPECT_EQ(textOf(file), "vdat chunk: the file ends within it");
  // Its PCM can still be read.
  EXPECT_EQ(OpenBytes(file)->Info().frames, 5u);
}

TEST(ReaderVef, HasStream_IsSaidOfWholeStreamsOnly) {
  EXPECT_EQ(OpenBytes(MonoVef(10).Chunk("vdat", {}).Take())->Info().has_stream, 0u);
  C_Bytes file = KestrelVefBytes(10, 3).Take();
  EXPECT_EQ(OpenBytes(file)->Info().has_stream, 1u);
  file.pop_back();
  EXPECT_EQ(OpenBytes(file)->Info().has_stream, 0u);
}

TEST(ReaderVef, HasStream_IsSaidOfForwardInputsWhenItComesBeforeTheSamples) {
  const C_Bytes stream = C_KestrelBytes(16000).Voice(3).Take();
  const C_Bytes fmt = FmtBytes(1, 1, 16000, 16);
  const C_Bytes before =
      C_RiffBytes("VEFF").Chunk("fmt ", fmt).Chunk("vdat", stream).Chunk("data", {1, 2}).Take();
  C_Bytes cut = C_RiffBytes("VEFF").Chunk("fmt ", fmt).Chunk("vdat", stream).Take();
  cut.pop_back();
  const auto hasStream = [](const C_Bytes& file) {
    C_TestInput input(file);
    const auto record = input.WithoutSeek().WithoutSize().Record();
    return C_Reader::Open(OpenInputSource(record), 0)->Info().has_stream;
  };
  EXPECT_EQ(hasStream(before), 1u);
  EXPECT_EQ(hasStream(cut), 0u);
  EXPECT_EQ(hasStream(KestrelVefBytes(10, 3).Take()), 0u);
}

TEST(ReaderVef, OtherFormatsThanPcm_AreRefused) {
  for (const C_Bytes& fmt : {FmtBytes(3, 1, 16000, 32), FmtBytes(6, 1, 16000, 8)}) {
    const C_Bytes file = C_RiffBytes("VEFF").Chunk("fmt ", fmt).Chunk("data", {1, 2}).Take();
    EXPECT_EQ(FailureOfOpening(file).eStatus, VOXPLAY_UNSUPPORTED);
  }
}

TEST(ReaderVef, PipeSizes_MeanNothingHere) {
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0, {});
  EXPECT_EQ(OpenBytes(riff.RiffSize(0).Take())->Info().frames, 0u);
}

TEST(ReaderVef, Events_HaveTheirData) {
  C_RiffBytes riff = MonoVef(100);
  riff.Chunk("cue ", CueBytes({{1, 20, 20}})).Chunk("LIST", AdtlBytes({LablBytes(1, "(65538,7)")}));
  const auto reader = OpenBytes(riff.Take());
  ASSERT_EQ(reader->Notes().events.size(), 1u);
  EXPECT_EQ(reader->Notes().events[0].wMain, 1);
  EXPECT_EQ(reader->Notes().events[0].wSub, 2);
  EXPECT_EQ(reader->Notes().events[0].dwData, 7u);
}
