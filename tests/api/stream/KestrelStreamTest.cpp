// SPDX-License-Identifier: Apache-2.0
//
// A Kestrel stream gives what C_KestrelCodec::Decode gives, in pieces and from any place on.
#include "stream/KestrelStream.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "KestrelBytes.h"
#include "KestrelSignals.h"
#include "StreamsForTests.h"
#include "TestInput.h"
#include "TestSound.h"
#include "codec/KestrelCodec.h"
#include "kestrel/Encoder.h"
#include "kestrel/VectorFiles.h"
#include "stream/KestrelMarks.h"

namespace api::test {
namespace {

std::optional<Samples> ByTheLibrary(const Bytes& bytes) {
  const C_SoundPtr sound(new C_WavData);
  sound->SetWavInfoData(16000, 0, 1, 16, 16, true);
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  if (!codec.Decode(bytes.data(), static_cast<unsigned int>(bytes.size()), sound.get(), nullptr)) {
    return std::nullopt;
  }
  Samples samples(sound->GetBufferLength() / 2);
  vcm::C_ByteReader reader({sound->GetBuffer(), sound->GetBufferLength()});
  for (auto& nSample : samples) nSample = reader.I16();
  return samples;
}

std::optional<Samples> Read(I_ByteSource& source, const std::vector<std::size_t>& sizes = {1000}) {
  try {
    return ReadAll(*OpenKestrelStream(source, kWhole).stream, sizes);
  } catch (const C_Failure& failure) {
    EXPECT_EQ(failure.Text().rfind("Kestrel stream: ", 0), 0U) << failure.Text();
    return std::nullopt;
  }
}

void ExpectAgreement(const Bytes& bytes) {
  const auto want = ByTheLibrary(bytes);
  C_MemorySourceForTests source(bytes);
  ASSERT_EQ(Read(source), want);
  C_ShownSource shown(bytes);
  ASSERT_EQ(Read(shown, {333, 1, 640}), want);
}

Bytes StreamOf(std::uint32_t dwRate, const std::vector<std::uint16_t>& words) {
  return C_KestrelBytes(dwRate).Words(words).Take();
}

// Frames that hold sound, and frames that are damaged: about a third.
Bytes MixedStream(std::uint32_t dwRate, std::size_t nFrames, unsigned int nSeed) {
  kestrel::test::C_Signals signals(nSeed);
  kestrel::C_Encoder encoder;
  encoder.Init(dwRate);
  const auto nWords = static_cast<std::size_t>(encoder.Configuration().nWordsPerFrame);
  std::vector<std::uint16_t> words(nFrames * nWords);
  for (std::size_t n = 0; n < nFrames; ++n) {
    const auto frame = std::span(words).subspan(n * nWords, nWords);
    encoder.Encode(signals.Next(), frame);
    if (signals.Below(3) == 0) std::ranges::fill(frame, std::uint16_t{0});
  }
  return StreamOf(dwRate, words);
}

// ---- the same as the library

TEST(KestrelStream, EveryVector_GivesTheSamplesOfTheLibrary) {
  for (const auto& vector : kestrel::test::ReadStreams()) {
    const Bytes bytes = StreamOf(vector.dwRate, kestrel::test::ReadWords(vector.name + ".bits"));
    C_MemorySourceForTests source(bytes);
    EXPECT_EQ(OpenKestrelStream(source, kWhole).dwBitRate, vector.dwRate);
    EXPECT_EQ(*OpenKestrelStream(source, kWhole).stream->FrameCount(), vector.nFrames * 320);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes)) << vector.name;
  }
}

TEST(KestrelStream, EveryRate_OpensAsInTheLibrary) {
  for (std::uint32_t dwRate = 0; dwRate <= 33000; dwRate += 100) {
    Bytes bytes = C_KestrelBytes(std::clamp(dwRate / 800 * 800, 4800U, 32000U)).Voice(3).Take();
    bytes[4] = static_cast<std::uint8_t>(dwRate);
    bytes[5] = static_cast<std::uint8_t>(dwRate >> 8);
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes)) << dwRate;
  }
}

TEST(KestrelStream, CutAtEveryByte_GivesWhatTheLibraryGives) {
  for (const std::uint32_t dwRate : {4800U, 7200U, 32000U}) {
    const Bytes bytes = C_KestrelBytes(dwRate).Voice(5).Take();
    for (std::size_t n = 0; n <= bytes.size(); ++n) {
      const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n));
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(cut)) << dwRate << ' ' << n;
    }
  }
}

TEST(KestrelStream, ChangedAtEveryByte_GivesWhatTheLibraryGives) {
  const Bytes bytes = C_KestrelBytes(7200).Voice(6).Take();
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    for (unsigned int nChange = 1; nChange < 256; nChange += n < 6 ? 1 : 37) {
      Bytes changed = bytes;
      changed[n] = static_cast<std::uint8_t>(changed[n] ^ nChange);
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(changed)) << n << ' ' << nChange;
    }
  }
}

TEST(KestrelStream, Claims_AreTakenAsTheLibraryTakesThem) {
  for (const std::uint32_t dwRate : {7200U, 16000U}) {
    C_KestrelBytes stream = C_KestrelBytes(dwRate).Voice(4);
    const auto cbAll = static_cast<std::uint32_t>(stream.Take().size());
    for (std::uint32_t dwClaim = 0; dwClaim < 20 * cbAll; dwClaim += dwClaim < 200 ? 1 : 3) {
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(stream.Claim(dwClaim).Take())) << dwClaim;
    }
    ASSERT_NO_FATAL_FAILURE(ExpectAgreement(stream.Claim(0xFFFFFFFF).Take()));
  }
}

TEST(KestrelStream, ClaimsOfPartsOfAFrame_AreRefused) {
  C_KestrelBytes stream = C_KestrelBytes(16000).Voice(4);
  for (const std::uint32_t dwClaim : {0U, 1U, 4U, 41U, 2 + 4 * 40 - 1U, 2 + 4 * 40 + 2U}) {
    C_MemorySourceForTests source(stream.Claim(dwClaim).Take());
    EXPECT_EQ(StatusOf([&] { OpenKestrelStream(source, kWhole); }), VOXPLAY_DAMAGED) << dwClaim;
  }
  // An odd length means the one below.
  C_MemorySourceForTests source(stream.Claim(2 + 4 * 40 + 1).Take());
  EXPECT_EQ(OpenKestrelStream(source, kWhole).stream->FrameCount(), 1280U);
}

TEST(KestrelStream, Refusals_SayWhy) {
  const auto textOf = [](const Bytes& bytes) -> std::string {
    C_MemorySourceForTests source(bytes);
    try {
      OpenKestrelStream(source, kWhole);
    } catch (const C_Failure& failure) {
      return failure.Text();
    }
    return "";
  };
  EXPECT_EQ(textOf({1, 2, 3, 4, 5}), "Kestrel stream: it ends within its head of 6 bytes");
  EXPECT_EQ(textOf({2, 0, 0, 0, 0x84, 0x1C}),
            "Kestrel stream: its bit rate of 7300 is not a multiple of 800 from 4800 to 32000");
  EXPECT_EQ(textOf({33, 0, 0, 0, 0x80, 0x3E}),
            "Kestrel stream: its length field claims 33 bytes, but only 2 follow");
  EXPECT_EQ(textOf({4, 0, 0, 0, 0x80, 0x3E, 1, 2}),
            "Kestrel stream: its length field of 4 does not end with a frame");
}

TEST(KestrelStream, AHeadAlone_IsASoundWithoutFrames) {
  const Bytes bytes = {2, 0, 0, 0, 0x80, 0x3E};
  ASSERT_NO_FATAL_FAILURE(ExpectAgreement(bytes));
  C_MemorySourceForTests source(bytes);
  const auto opened = OpenKestrelStream(source, kWhole);
  EXPECT_EQ(opened.stream->FrameCount(), 0U);
  opened.stream->Seek(0);
  EXPECT_EQ(StatusOf([&] { opened.stream->Seek(1); }), VOXPLAY_BAD_ARGUMENT);
}

TEST(KestrelStream, ARangeWithinASource_IsAllThatIsRead) {
  const Bytes bytes = C_KestrelBytes(16000).Voice(5).Take();
  Bytes around(100, 0xB6);
  around.insert(around.end(), bytes.begin(), bytes.end());
  around.insert(around.end(), 100, 0xB6);
  for (const std::size_t nSize : {bytes.size(), bytes.size() - 50}) {
    const auto want =
        ByTheLibrary({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nSize)});
    C_MemorySourceForTests source(around);
    EXPECT_EQ(ReadAll(*OpenKestrelStream(source, {100, nSize}).stream), want);
    C_ShownSource shown(around);
    EXPECT_EQ(ReadAll(*OpenKestrelStream(shown, {100, nSize}).stream), want);
  }
  C_MemorySourceForTests source(around);
  EXPECT_EQ(StatusOf([&] { OpenKestrelStream(source, {1000000, 100}); }), VOXPLAY_DAMAGED);
}

TEST(KestrelStream, PiecesOfAnySize_GiveTheSameSamples) {
  const Bytes bytes = MixedStream(24000, 150, 5);
  const auto want = ByTheLibrary(bytes);
  for (const std::size_t nSize : {1U, 7U, 319U, 320U, 321U, 640U, 20000U, 100000U}) {
    C_MemorySourceForTests source(bytes);
    ASSERT_EQ(Read(source, {nSize}), want) << nSize;
  }
}

TEST(KestrelStream, OtherTypesOfSamples_AreTheSameOnes) {
  C_MemorySourceForTests source(MixedStream(16000, 10, 6));
  const auto opened = OpenKestrelStream(source, kWhole);
  const Samples want = ReadAll(*opened.stream);
  opened.stream->Seek(0);
  std::vector<std::int32_t> wide(want.size());
  EXPECT_EQ(opened.stream->Read(std::span(wide)), want.size());
  for (std::size_t n = 0; n < want.size(); ++n) ASSERT_EQ(wide[n], want[n] * 65536) << n;
}

// ---- seeking

TEST(KestrelStream, SeeksAnywhere_GiveTheSamplesOfReadingAll) {
  for (const std::uint32_t dwRate : {4800U, 16000U, 32000U}) {
    const Bytes bytes = MixedStream(dwRate, 400, dwRate);
    C_MemorySourceForTests source(bytes);
    const auto opened = OpenKestrelStream(source, kWhole);
    ASSERT_NO_FATAL_FAILURE(
        ExpectExactSeeks(*opened.stream, ByTheLibrary(bytes).value(), 300, dwRate));
  }
}

// More frames than the first marks reach: the distance of the marks doubles on the way.
TEST(KestrelStream, SeeksInALongStream_GiveTheSamplesOfReadingAll) {
  const Bytes bytes = MixedStream(8000, 40000, 8);
  const Samples want = ByTheLibrary(bytes).value();
  C_MemorySourceForTests source(bytes);
  const auto opened = OpenKestrelStream(source, kWhole);
  ASSERT_NO_FATAL_FAILURE(ExpectExactSeeks(*opened.stream, want, 60, 9));
  C_MemorySourceForTests other(bytes);
  const auto read = OpenKestrelStream(other, kWhole);
  ASSERT_EQ(ReadAll(*read.stream), want);
  ASSERT_NO_FATAL_FAILURE(ExpectExactSeeks(*read.stream, want, 60, 10));
}

TEST(KestrelMarks, TooMany_DoubleTheirDistance) {
  C_KestrelMarks marks;
  S_KestrelMark mark;
  for (; mark.qwFrame < 40000; ++mark.qwFrame) {
    EXPECT_EQ(marks.Wants(mark.qwFrame), mark.qwFrame % (mark.qwFrame <= 16384   ? 64
                                                         : mark.qwFrame <= 32768 ? 128
                                                                                 : 256) ==
                                             0);
    marks.Offer(mark);
  }
  for (const std::uint64_t qwFrame : {0U, 255U, 256U, 9999U, 33000U, 39999U}) {
    EXPECT_EQ(marks.Before(qwFrame).qwFrame, qwFrame / 256 * 256) << qwFrame;
  }
  EXPECT_EQ(marks.Before(1000000).qwFrame, 39936U);
}

TEST(KestrelStream, ASeekWithinAFrame_GoesOnWithinIt) {
  const Bytes bytes = C_KestrelBytes(16000).Voice(10).Take();
  const Samples want = ByTheLibrary(bytes).value();
  C_MemorySourceForTests source(bytes);
  const auto opened = OpenKestrelStream(source, kWhole);
  Samples samples(50);
  for (const std::size_t nAt : {700U, 650U, 959U, 640U, 3200U, 645U, 1000U, 960U}) {
    opened.stream->Seek(nAt);
    const std::size_t nRead = opened.stream->Read(std::span(samples));
    ASSERT_EQ(nRead, std::min<std::size_t>(50, 3200 - nAt));
    ASSERT_TRUE(std::equal(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(nRead),
                           want.begin() + static_cast<std::ptrdiff_t>(nAt)))
        << nAt;
  }
  EXPECT_EQ(StatusOf([&] { opened.stream->Seek(3201); }), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(opened.stream->Position(), 1010U);
}

// ---- damage

// Ten frames of a voice, of which these are made invalid.
Bytes WithDamaged(const std::vector<std::size_t>& frames) {
  Bytes bytes = C_KestrelBytes(16000).Voice(10).Take();
  for (const std::size_t nFrame : frames) {
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(6 + nFrame * 40), 40, std::uint8_t{0});
  }
  return bytes;
}

TEST(KestrelStream, DamagedFrames_CountAsTheyAreRead) {
  C_MemorySourceForTests source(WithDamaged({3, 4, 8}));
  const auto opened = OpenKestrelStream(source, kWhole);
  Samples samples(4 * 320);
  opened.stream->Read(std::span(samples).first(3 * 320));
  EXPECT_EQ(opened.stream->DamagedFrames(), 0U);
  opened.stream->Read(std::span(samples).first(100));
  EXPECT_EQ(opened.stream->DamagedFrames(), 100U);
  opened.stream->Read(std::span(samples).first(220));
  EXPECT_EQ(opened.stream->DamagedFrames(), 320U);
  opened.stream->Read(std::span(samples));
  EXPECT_EQ(opened.stream->DamagedFrames(), 640U);
  ReadAll(*OpenKestrelStream(source, kWhole).stream);
  opened.stream->Read(std::span(samples));
  EXPECT_EQ(opened.stream->DamagedFrames(), 960U);
}

TEST(KestrelStream, FramesThatASeekPasses_AreNotCounted) {
  C_MemorySourceForTests source(WithDamaged({1, 2, 3, 7}));
  const auto opened = OpenKestrelStream(source, kWhole);
  opened.stream->Seek(5 * 320);
  Samples samples(10 * 320);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 5U * 320);
  EXPECT_EQ(opened.stream->DamagedFrames(), 320U);
}

TEST(KestrelStream, DamagedFramesThatAreReadAgain_CountOnce) {
  C_MemorySourceForTests source(WithDamaged({3, 4, 8}));
  const auto opened = OpenKestrelStream(source, kWhole);
  Samples samples(10 * 320);
  opened.stream->Seek(4 * 320 + 100);
  opened.stream->Read(std::span(samples).first(320));
  EXPECT_EQ(opened.stream->DamagedFrames(), 220U);
  // Those before were passed over.
  for (int n = 0; n < 3; ++n) {
    opened.stream->Seek(0);
    EXPECT_EQ(opened.stream->Read(std::span(samples)), 10U * 320);
    EXPECT_EQ(opened.stream->DamagedFrames(), 220U + 320);
  }
}

TEST(KestrelStream, AFrameThatTheEndCuts_CountsAsDamaged) {
  const Bytes bytes = C_KestrelBytes(16000).Voice(10).Take();
  for (const auto& [nKept, nFrames, nDamaged] : {std::array<std::size_t, 3>{6 + 400, 10, 0},
                                                 {6 + 399, 10, 1},
                                                 {6 + 361, 10, 1},
                                                 {6 + 360, 9, 0}}) {
    C_MemorySourceForTests source(
        {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nKept)});
    const auto opened = OpenKestrelStream(source, kWhole);
    EXPECT_EQ(ReadAll(*opened.stream).size(), nFrames * 320) << nKept;
    EXPECT_EQ(opened.stream->DamagedFrames(), nDamaged * 320) << nKept;
  }
}

// ---- sources that fail, end or only go forward

TEST(KestrelStream, WhereTheSourceCannotBeRead_TheFramesBeforeComeFirst) {
  const Bytes bytes = C_KestrelBytes(16000).Voice(200).Take();
  const Samples want = ByTheLibrary(bytes).value();
  for (const std::size_t nFrame : {0U, 1U, 63U, 64U, 70U, 199U}) {
    C_BrokenSource source(bytes, 6 + nFrame * 40 + 5);
    const auto opened = OpenKestrelStream(source, kWhole);
    Samples samples(want.size());
    std::size_t nDone = 0;
    if (nFrame > 0) nDone = opened.stream->Read(std::span(samples));
    EXPECT_EQ(nDone, nFrame * 320);
    EXPECT_EQ(StatusOf([&] { opened.stream->Read(std::span(samples)); }), VOXPLAY_CANNOT_READ);
    EXPECT_EQ(StatusOf([&] { opened.stream->Seek(nFrame * 320 + 320); }),
              nFrame == 199 ? VOXPLAY_OK : VOXPLAY_CANNOT_READ);
    if (nFrame == 199) opened.stream->Seek(nFrame * 320);
    EXPECT_EQ(opened.stream->Position(), nFrame * 320);
    source.Repair();
    EXPECT_EQ(opened.stream->Read(std::span(samples).subspan(nDone)), want.size() - nDone);
    EXPECT_EQ(samples, want) << nFrame;
  }
}

TEST(KestrelStream, AFailureThatWasKept_IsForgottenBySeeking) {
  const Bytes bytes = C_KestrelBytes(16000).Voice(20).Take();
  C_BrokenSource source(bytes, 6 + 10 * 40);
  const auto opened = OpenKestrelStream(source, kWhole);
  Samples samples(6400);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 3200U);
  opened.stream->Seek(0);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 3200U);
}

TEST(KestrelStream, APipe_IsReadToItsEnd) {
  const Bytes bytes = MixedStream(16000, 200, 3);
  for (const std::size_t nKept : {bytes.size(), bytes.size() - 40, bytes.size() - 55}) {
    const Bytes kept(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nKept));
    C_PipeSource source(kept);
    const auto opened = OpenKestrelStream(source, kWhole);
    EXPECT_EQ(opened.stream->FrameCount(), std::nullopt);
    EXPECT_EQ(ReadAll(*opened.stream, {777}), ByTheLibrary(kept));
    EXPECT_EQ(opened.stream->FrameCount(), (nKept - 6 + 39) / 40 * 320);
  }
}

TEST(KestrelStream, APipe_SeeksForwardOnly) {
  const Bytes bytes = MixedStream(16000, 200, 4);
  const Samples want = ByTheLibrary(bytes).value();
  C_PipeSource source(bytes);
  const auto opened = OpenKestrelStream(source, kWhole);
  Samples samples(500);
  opened.stream->Seek(150 * 320 + 7);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 500U);
  EXPECT_TRUE(std::equal(samples.begin(), samples.end(), want.begin() + 150 * 320 + 7));
  EXPECT_EQ(StatusOf([&] { opened.stream->Seek(100); }), VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(opened.stream->Position(), 150U * 320 + 507);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 500U);
  EXPECT_TRUE(std::equal(samples.begin(), samples.end(), want.begin() + 150 * 320 + 507));
}

TEST(KestrelStream, ASeekBeyondTheClaimOfAPipe_IsRefusedAtOnce) {
  const Bytes bytes = MixedStream(16000, 200, 4);
  C_PipeSource source(bytes);
  const auto opened = OpenKestrelStream(source, kWhole);
  const std::size_t nReads = source.ReadCount();
  EXPECT_EQ(StatusOf([&] { opened.stream->Seek(1000000000000); }), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(source.ReadCount(), nReads);
  EXPECT_EQ(opened.stream->Position(), 0U);
  EXPECT_EQ(ReadAll(*opened.stream), ByTheLibrary(bytes));
}

// 100 of the 200 frames that the length field claims.
TEST(KestrelStream, ASeekBeyondTheEndOfAPipe_IsRefusedAtTheEnd) {
  Bytes bytes = MixedStream(16000, 200, 4);
  bytes.resize(6 + 100 * 40);
  for (const std::size_t nAt : {100U * 320 + 1, 150U * 320, 150U * 320 + 7, 200U * 320}) {
    C_PipeSource source(bytes);
    const auto opened = OpenKestrelStream(source, kWhole);
    Samples samples(500);
    EXPECT_EQ(opened.stream->Read(std::span(samples)), 500U);
    EXPECT_EQ(StatusOf([&] { opened.stream->Seek(nAt); }), VOXPLAY_BAD_ARGUMENT) << nAt;
    EXPECT_EQ(opened.stream->Position(), 100U * 320);
    EXPECT_EQ(opened.stream->FrameCount(), 100U * 320);
    EXPECT_EQ(opened.stream->Read(std::span(samples)), 0U);
  }
  C_PipeSource source(bytes);
  const auto opened = OpenKestrelStream(source, kWhole);
  opened.stream->Seek(100 * 320);
  EXPECT_EQ(opened.stream->Position(), 100U * 320);
}

TEST(KestrelStream, APipe_GivesAFrameAsSoonAsItsBytesCome) {
  C_TestInput input(MixedStream(16000, 200, 3));
  input.WithoutSeek().WithoutSize().WithoutTell().AtMost(46);
  const auto source = OpenInputSource(input.Record());
  const auto opened = OpenKestrelStream(*source, kWhole);
  Samples samples(320);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 320U);
  EXPECT_EQ(input.Reads(), 1);
  EXPECT_EQ(opened.stream->Read(std::span(samples)), 320U);
  EXPECT_EQ(input.Reads(), 2);
}

TEST(KestrelStream, APipeThatFails_GivesTheFramesBefore) {
  const Bytes bytes = MixedStream(16000, 200, 3);
  const Samples want = ByTheLibrary(bytes).value();
  for (const std::size_t cbAtOnce : {46U, 100U, 1000U}) {
    C_TestInput input(bytes);
    input.WithoutSeek().WithoutSize().WithoutTell().AtMost(cbAtOnce).FailingAt(5);
    const auto source = OpenInputSource(input.Record());
    const auto opened = OpenKestrelStream(*source, kWhole);
    Samples samples(want.size());
    const std::size_t nFrames = (4 * cbAtOnce - 6) / 40;
    ASSERT_EQ(opened.stream->Read(std::span(samples)), nFrames * 320) << cbAtOnce;
    EXPECT_EQ(StatusOf([&] { opened.stream->Read(std::span(samples).first(1)); }),
              VOXPLAY_CANNOT_READ);
    // The input goes on, and so does the sound.
    const auto rest = std::span(samples).subspan(nFrames * 320);
    EXPECT_EQ(opened.stream->Read(rest), rest.size());
    EXPECT_EQ(samples, want);
  }
}

}  // namespace
}  // namespace api::test
