// SPDX-License-Identifier: Apache-2.0
//
// Streams of PCM: lengths, missing bytes, pieces, seeking, sources that fail.
#include <gtest/gtest.h>

#include <array>

#include "../support/TestInput.h"
#include "Sources.h"
#include "SweepFile.h"
#include "WavBytes.h"
#include "WavFileObject.h"
#include "stream/PcmSamples.h"
#include "stream/PcmStream.h"

namespace api::test {
namespace {

using C_Shorts = std::vector<std::int16_t>;

constexpr S_PcmFormat kMono16 = {1, 16, false};
constexpr S_PcmFormat kStereo16 = {2, 16, false};

// All kinds that files have.
std::vector<S_PcmFormat> AllFormats() {
  std::vector<S_PcmFormat> formats;
  for (const std::uint16_t wChannels : std::to_array<std::uint16_t>({1, 2, 3, 8})) {
    for (const std::uint16_t wBits : std::to_array<std::uint16_t>({8, 16, 24, 32})) {
      formats.push_back({wChannels, wBits, false});
    }
    for (const std::uint16_t wBits : std::to_array<std::uint16_t>({32, 64})) {
      formats.push_back({wChannels, wBits, true});
    }
  }
  return formats;
}

std::size_t FrameBytes(const S_PcmFormat& format) {
  return std::size_t{format.wChannels} * (format.wBits / 8U);
}

S_PcmRange Claim(std::uint64_t qwSize, std::uint64_t qwHeld, std::uint64_t qwAt = 0) {
  return {{qwAt, qwSize}, qwHeld, false};
}

// Samples of the whole sound, without a stream. Bit patterns, because some are not numbers.
template <typename Sample>
std::vector<Sample> Expected(const S_PcmFormat& format, const C_Bytes& bytes) {
  std::vector<Sample> samples(bytes.size() / FrameBytes(format) * format.wChannels);
  ConvertPcm(format, bytes.data(), std::span<Sample>(samples));
  return samples;
}
template <typename Sample>
C_Bytes BitsOf(const std::vector<Sample>& samples) {
  const auto* const pbySamples = reinterpret_cast<const std::uint8_t*>(samples.data());
  return {pbySamples, pbySamples + samples.size() * sizeof(Sample)};
}

template <typename Sample>
void ExpectAllPieces(const S_PcmFormat& format, const C_Bytes& bytes) {
  const auto expected = Expected<Sample>(format, bytes);
  for (const std::size_t nAtOnce : std::to_array<std::size_t>({1, 7, 1000, 100'000})) {
    C_MemorySourceForTests source(bytes);
    const auto stream = OpenPcmStream(source, Claim(bytes.size(), bytes.size()), format);
    EXPECT_EQ(BitsOf(ReadRest<Sample>(*stream, nAtOnce)), BitsOf(expected))
        << format.wChannels << " channels, " << format.wBits << " bits, " << nAtOnce;
    EXPECT_EQ(stream->Position(), expected.size() / format.wChannels);
    EXPECT_EQ(stream->DamagedFrames(), 0U);
  }
}

}  // namespace

TEST(PcmStream, PiecesOfAnySize_GiveTheSameSamples) {
  for (const S_PcmFormat& format : AllFormats()) {
    const C_Bytes bytes = Noise(9001 * FrameBytes(format) / format.wChannels);
    ExpectAllPieces<std::int16_t>(format, bytes);
    ExpectAllPieces<std::int32_t>(format, bytes);
    ExpectAllPieces<float>(format, bytes);
  }
}

TEST(PcmStream, WhatFollowsTheLastWholeFrame_IsIgnored) {
  C_MemorySourceForTests source(C_Bytes(100, 1));
  const auto stream = OpenPcmStream(source, Claim(11, 11, 3), kStereo16);
  EXPECT_EQ(stream->FrameCount(), 2U);
  EXPECT_EQ(stream->ChannelCount(), 2U);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), C_Shorts(4, 0x0101));
}

TEST(PcmStream, SixteenBits_AreOneReadStraightIntoTheBuffer) {
  C_MemorySourceForTests source(Noise(400'000));
  const auto stream = OpenPcmStream(source, Claim(400'000, 400'000), kStereo16);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 200'000).size(), 200'000U);
  EXPECT_EQ(source.ReadCount(), 1U);
}

TEST(PcmStream, EverySeek_GoesOnAsSequentialReadingDoes) {
  for (const S_PcmFormat& format : AllFormats()) {
    const C_Bytes bytes = Noise(50 * FrameBytes(format));
    C_MemorySourceForTests source(bytes);
    const auto stream = OpenPcmStream(source, Claim(bytes.size(), bytes.size()), format);
    const auto expected = Expected<std::int32_t>(format, bytes);
    for (std::uint64_t qwFrame = 0; qwFrame <= 50; ++qwFrame) {
      stream->Seek(50 - qwFrame);
      EXPECT_EQ(stream->Position(), 50 - qwFrame);
      const auto nSkipped = static_cast<std::ptrdiff_t>((50 - qwFrame) * format.wChannels);
      EXPECT_EQ(ReadRest<std::int32_t>(*stream),
                (std::vector<std::int32_t>(expected.begin() + nSkipped, expected.end())));
    }
    EXPECT_EQ(StatusOf([&] { stream->Seek(51); }), VOXPLAY_BAD_ARGUMENT);
    EXPECT_EQ(stream->Position(), 50U);
  }
}

TEST(PcmStream, FilesCutAtEveryByte_HaveTheSamplesOfTheClassLibrary) {
  for (const std::uint16_t wBits : std::to_array<std::uint16_t>({8, 16, 24, 32})) {
    for (const std::uint16_t wChannels : std::to_array<std::uint16_t>({1, 2, 3, 8})) {
      const S_PcmFormat format = {wChannels, wBits, false};
      const C_Bytes data = Noise(5 * FrameBytes(format) + 1);
      C_RiffBytes riff("WAVE");
      riff.Chunk("fmt ", FmtBytes(1, wChannels, 8000, wBits)).Chunk("data", data);
      const C_SweepFile file(riff.Take());
      for (std::size_t cbLength = file.Bytes().size(); cbLength >= 44; --cbLength) {
        file.CutTo(cbLength);
        const C_WavObjectPtr loaded = LoadWav(file.Path());
        C_MemorySourceForTests source(
            {file.Bytes().begin(), file.Bytes().begin() + static_cast<std::ptrdiff_t>(cbLength)});
        const auto stream = OpenPcmStream(source, Claim(data.size(), cbLength - 44, 44), format);
        EXPECT_EQ(ReadRest<std::int32_t>(*stream), Expected<std::int32_t>(format, PcmOf(*loaded)));
        const std::size_t nWhole = (cbLength - 44) / FrameBytes(format);
        const std::size_t nFrames = data.size() / FrameBytes(format);
        EXPECT_EQ(stream->FrameCount(), nFrames);
        EXPECT_EQ(stream->DamagedFrames(), nFrames - std::min(nWhole, nFrames));
      }
    }
  }
}

TEST(PcmStream, MissingBytes_AreZerosEvenIfTheSourceHasOthersThere) {
  C_MemorySourceForTests source(C_Bytes(8, 7));
  const auto stream = OpenPcmStream(source, Claim(8, 3), kMono16);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), (C_Shorts{0x0707, 0x0007, 0, 0}));
  EXPECT_EQ(stream->DamagedFrames(), 3U);
}

TEST(PcmStream, MissingEightBitSamples_HaveTheLowestValue) {
  C_MemorySourceForTests source(C_Bytes(1, 0x80));
  const auto stream = OpenPcmStream(source, Claim(3, 1), {1, 8, false});
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), (C_Shorts{0, -32768, -32768}));
}

TEST(PcmStream, DamagedFramesReadAgain_CountOnce) {
  C_MemorySourceForTests source(C_Bytes(4, 1));
  const auto stream = OpenPcmStream(source, Claim(20, 4), kMono16);
  ReadFrames<std::int16_t>(*stream, 5);
  EXPECT_EQ(stream->DamagedFrames(), 3U);
  stream->Seek(1);
  ReadFrames<std::int16_t>(*stream, 5);
  EXPECT_EQ(stream->DamagedFrames(), 4U);
}

TEST(PcmStream, SourceThatEndsBeforeItSaid_LeavesZeros) {
  C_MemorySourceForTests source({1, 0, 2, 0, 3});
  const auto stream = OpenPcmStream(source, Claim(10, 10), kMono16);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), (C_Shorts{1, 2, 3, 0, 0}));
  EXPECT_EQ(stream->DamagedFrames(), 3U);
  EXPECT_EQ(stream->FrameCount(), 5U);
}

TEST(PcmStream, SourceThatLacksMoreThan64MiB_EndsTheSound) {
  constexpr std::uint64_t kMissing = std::uint64_t{64} << 20U;
  C_ForwardSource most({1, 0, 2, 0});
  const auto zeros = OpenPcmStream(most, Claim(4 + kMissing, 4 + kMissing), kMono16);
  EXPECT_EQ(ReadFrames<std::int16_t>(*zeros, 4), (C_Shorts{1, 2, 0, 0}));
  EXPECT_EQ(zeros->FrameCount(), 2 + kMissing / 2);
  C_ForwardSource fewer({1, 0, 2, 0, 3});
  const auto stream = OpenPcmStream(fewer, Claim(6 + kMissing, 6 + kMissing), kMono16);
  EXPECT_EQ(stream->FrameCount(), 3 + kMissing / 2);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 4), (C_Shorts{1, 2}));
  EXPECT_EQ(stream->FrameCount(), 2U);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 4), C_Shorts());
}

TEST(PcmStream, ClaimsBeyondAllPositions_AreReadToWhereTheyEnd) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  C_MemorySourceForTests source({0, 0, 5, 0});
  const auto stream = OpenPcmStream(source, Claim(kMost, kMost, 2), kMono16);
  EXPECT_EQ(stream->FrameCount(), (kMost - 2) / 2);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), C_Shorts{5});
  EXPECT_EQ(stream->FrameCount(), 1U);
}

TEST(PcmStream, SoundToTheEnd_EndsWithItsSource) {
  C_MemorySourceForTests source({9, 9, 1, 0, 2, 0, 3});
  const auto stream = OpenPcmStream(source, {{2, 0}, 0, true}, kMono16);
  EXPECT_EQ(stream->FrameCount(), 2U);
  EXPECT_EQ(ReadRest<std::int16_t>(*stream), (C_Shorts{1, 2}));
  C_MemorySourceForTests nothing({9});
  EXPECT_EQ(OpenPcmStream(nothing, {{2, 0}, 0, true}, kMono16)->FrameCount(), 0U);
}

TEST(PcmStream, SoundToAnEndThatIsNotKnown_TellsItsLengthAtTheEnd) {
  C_ForwardSource source(Noise(2003));
  const auto stream = OpenPcmStream(source, {{2, 0}, 0, true}, kMono16);
  EXPECT_EQ(stream->FrameCount(), std::nullopt);
  EXPECT_EQ(ReadFrames<std::int32_t>(*stream, 500).size(), 500U);
  EXPECT_EQ(stream->FrameCount(), std::nullopt);
  EXPECT_EQ(ReadRest<std::int32_t>(*stream, 70).size(), 500U);
  EXPECT_EQ(stream->FrameCount(), 1000U);
  EXPECT_EQ(stream->DamagedFrames(), 0U);
}

TEST(PcmStream, ForwardSource_SeeksForwardOnly) {
  const C_Bytes bytes = Noise(2000);
  C_ForwardSource source(bytes);
  const auto stream = OpenPcmStream(source, {{0, 0}, 0, true}, kMono16);
  stream->Seek(600);
  EXPECT_EQ(BitsOf(ReadFrames<std::int16_t>(*stream, 1)), (C_Bytes{bytes[1200], bytes[1201]}));
  EXPECT_EQ(StatusOf([&] { stream->Seek(600); }), VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(stream->Position(), 601U);
  stream->Seek(601);
  EXPECT_EQ(StatusOf([&] { stream->Seek(1001); }), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(stream->Position(), 1000U);
  EXPECT_EQ(stream->FrameCount(), 1000U);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 1), C_Shorts());
}

TEST(PcmStream, FarSeekBeyondAnEndThatIsNotKnown_EndsAtTheEnd) {
  C_ForwardSource source(Noise(20'003));
  const auto stream = OpenPcmStream(source, {{2, 0}, 0, true}, kStereo16);
  EXPECT_EQ(StatusOf([&] { stream->Seek(10'000'000); }), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(stream->Position(), 5000U);
  EXPECT_EQ(stream->FrameCount(), 5000U);
}

TEST(PcmStream, ForwardInputThatFails_GivesTheFramesBefore) {
  const C_Bytes bytes = Noise(100'000);
  for (const std::size_t cbAtOnce : std::to_array<std::size_t>({3, 1001, 4096})) {
    C_TestInput input(bytes);
    input.WithoutSeek().WithoutSize().WithoutTell().AtMost(cbAtOnce).FailingAt(21);
    const auto source = OpenInputSource(input.Record());
    const auto stream = OpenPcmStream(*source, {{0, 0}, 0, true}, kStereo16);
    const std::size_t nGood = 20 * cbAtOnce / 4;
    C_Shorts samples = ReadFrames<std::int16_t>(*stream, 25'000);
    EXPECT_EQ(samples.size(), nGood * 2) << cbAtOnce;
    EXPECT_EQ(StatusOf([&] { ReadFrames<std::int16_t>(*stream, 1); }), VOXPLAY_CANNOT_READ);
    EXPECT_EQ(stream->Position(), nGood);
    // The input goes on, and so does the sound.
    const C_Shorts rest = ReadRest<std::int16_t>(*stream);
    samples.insert(samples.end(), rest.begin(), rest.end());
    EXPECT_EQ(samples, Expected<std::int16_t>(kStereo16, bytes));
  }
}

TEST(PcmStream, SeekFarBeyondAnEndThatIsNotKnown_IsRefused) {
  C_ForwardSource source(Noise(100));
  const auto stream = OpenPcmStream(source, {{0, 0}, 0, true}, kStereo16);
  EXPECT_EQ(StatusOf([&] { stream->Seek(std::numeric_limits<std::uint64_t>::max()); }),
            VOXPLAY_BAD_ARGUMENT);
}

TEST(PcmStream, FramesBeforeABadPlace_AreReturnedBeforeTheFailure) {
  for (std::size_t cbGood = 0; cbGood < 60; ++cbGood) {
    C_BrokenSource source(Noise(60), cbGood);
    const auto stream = OpenPcmStream(source, Claim(60, 60), kStereo16);
    if (cbGood >= 4) {
      EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 15).size(), cbGood / 4 * 2) << cbGood;
    }
    EXPECT_EQ(TextOf([&] { ReadFrames<std::int16_t>(*stream, 15); }), "bad sector");
    EXPECT_EQ(stream->Position(), cbGood / 4);
    source.Repair();
    EXPECT_EQ(ReadRest<std::int16_t>(*stream).size(), (15 - cbGood / 4) * 2);
  }
}

TEST(PcmStream, FramesBeforeABadPlace_AreConvertedToo) {
  C_BrokenSource source(Noise(90'000), 70'001);
  const auto stream = OpenPcmStream(source, Claim(90'000, 90'000), {3, 24, false});
  EXPECT_EQ(ReadFrames<float>(*stream, 10'000).size(), 70'001U / 9 * 3);
  EXPECT_EQ(StatusOf([&] { ReadFrames<float>(*stream, 10'000); }), VOXPLAY_CANNOT_READ);
}

TEST(PcmStream, FailureThatPasses_IsStillTold) {
  C_HiccupSource source(Noise(60));
  const auto stream = OpenPcmStream(source, Claim(60, 60), kMono16);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 10).size(), 10U);
  const std::size_t nFrames = ReadFrames<std::int16_t>(*stream, 10).size();
  EXPECT_GT(nFrames, 0U);
  EXPECT_EQ(TextOf([&] { ReadFrames<std::int16_t>(*stream, 10); }), "bad sector");
  EXPECT_EQ(ReadRest<std::int16_t>(*stream).size(), 20 - nFrames);
}

TEST(PcmStream, SeekAfterAFailure_ForgetsIt) {
  C_BrokenSource source(Noise(60), 40);
  const auto stream = OpenPcmStream(source, Claim(60, 60), kMono16);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 30).size(), 20U);
  stream->Seek(5);
  EXPECT_EQ(ReadFrames<std::int16_t>(*stream, 3).size(), 3U);
}

TEST(PcmStream, ManyChannels_AreRead) {
  const S_PcmFormat format = {65535, 64, true};
  const C_Bytes bytes = Noise(3 * FrameBytes(format) + 77);
  ExpectAllPieces<std::int16_t>(format, bytes);
}

TEST(PcmStream, FormatsThatAreNotInTheTable_AreRefused) {
  C_MemorySourceForTests source(C_Bytes(100));
  const auto Status = [&](const S_PcmFormat& format) {
    return StatusOf([&] { OpenPcmStream(source, Claim(100, 100), format); });
  };
  EXPECT_EQ(Status({0, 16, false}), VOXPLAY_DAMAGED);
  for (const S_PcmFormat& format : {S_PcmFormat{1, 0, false},
                                    {1, 12, false},
                                    {1, 40, false},
                                    {1, 64, false},
                                    {1, 16, true},
                                    {1, 80, true}}) {
    EXPECT_EQ(Status(format), VOXPLAY_UNSUPPORTED) << format.wBits;
  }
  EXPECT_EQ(TextOf([&] {
              OpenPcmStream(source, Claim(100, 100), {1, 12, false});
            }),
            "format: samples of 12 bits are not supported");
}

TEST(PcmStream, SoundOfManyGibibytes_IsReadAtAnyPlace) {
  constexpr std::uint64_t kFrames = std::uint64_t{48'000} * 36'000;  // ten hours
  C_EndlessSource source(kFrames * 6 + 44);
  const auto stream = OpenPcmStream(source, Claim(kFrames * 6, kFrames * 6, 44), {2, 24, false});
  EXPECT_EQ(stream->FrameCount(), kFrames);
  stream->Seek(kFrames - 1);
  const std::uint64_t qwAt = 44 + (kFrames - 1) * 6;
  const auto frame = ReadRest<std::int16_t>(*stream);
  ASSERT_EQ(frame.size(), 2U);
  EXPECT_EQ(static_cast<std::uint16_t>(frame[1]),
            C_EndlessSource::ByteAt(qwAt + 4) | C_EndlessSource::ByteAt(qwAt + 5) << 8U);
}

}  // namespace api::test
