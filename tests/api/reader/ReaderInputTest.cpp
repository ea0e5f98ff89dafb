// SPDX-License-Identifier: Apache-2.0
//
// Sounds from the caller's functions: those that go only forward, and those that fail.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "CompressedBytes.h"
#include "HeronBytes.h"
#include "KestrelBytes.h"
#include "LargestAllocation.h"
#include "ReadSounds.h"
#include "SpBytes.h"
#include "TestInput.h"
#include "VefBytes.h"

namespace {

using api::C_Reader;
using api::OpenInputSource;
using api::test::C_TestInput;
using api::test::FailureOf;
using api::test::OpenBytes;
using api::test::SamplesOf;
using C_Samples16 = std::vector<std::int16_t>;

struct S_Kind {
  const char* pszName;
  C_Bytes file;
  std::uint32_t dwFlags = 0;
};

// A file of each container; those of RIFF have chunks on both sides of the samples.
std::vector<S_Kind> Kinds() {
  C_RiffBytes wav("WAVE");
  wav.Chunk("bext", RampBytes(80000)).Chunk("fmt ", FmtBytes(1, 2, 16000, 16));
  wav.Chunk("data", RampBytes(20000)).Chunk("cue ", CueBytes({{1, 30, 30}}));
  wav.Chunk("LIST", AdtlBytes({LablBytes(1, "u_3_7")}));
  const C_Bytes kestrel = C_KestrelBytes(16000).Voice(30).Take();
  const C_Bytes heron = C_HeronBytes(heron::test::kKinds[1], TestVoice(9000), 16000).Take();
  return {{"wav", wav.Take()},
          {"adpcm", CompressedWav({WAVE_TAG_DVI_ADPCM, 2, 24, 17, 4}, RampBytes(9600)).Take()},
          {"vef", KestrelVefBytes(5000, 20).Take()},
          {"vef stream", KestrelVefBytes(5000, 20).Take(), VOXPLAY_READ_STREAM},
          {"kestrel", C_SpBytes().Stream(kestrel).Take()},
          {"heron", C_SpBytes().ID(33).Stream(heron).Take()},
          {"head", Join({U16(33), U16(16000), U16(0), heron})},
          {"bare", kestrel}};
}

}  // namespace

TEST(ReaderInput, EveryKind_IsReadFromFunctionsAsFromMemory) {
  for (const S_Kind& kind : Kinds()) {
    SCOPED_TRACE(kind.pszName);
    const auto memory = OpenBytes(kind.file, kind.dwFlags);
    for (const bool bSize : {true, false}) {
      C_TestInput input(kind.file);
      input.AtMost(3000);
      if (!bSize) input.WithoutSize();
      const auto reader = C_Reader::Open(OpenInputSource(input.Record()), kind.dwFlags);
      EXPECT_EQ(reader->Info().frames, memory->Info().frames);
      EXPECT_EQ(reader->Notes(), memory->Notes());
      memory->Samples().Seek(0);
      EXPECT_EQ(SamplesOf(*reader), SamplesOf(*memory));
    }
  }
}

TEST(ReaderInput, ForwardInputs_GiveAllSamplesWhereOneWayIsEnough) {
  for (const S_Kind& kind : Kinds()) {
    SCOPED_TRACE(kind.pszName);
    const std::string strName = kind.pszName;
    const bool bGoesBack = strName == "heron" || strName == "head" || strName == "vef stream";
    for (const bool bSize : {true, false}) {
      C_TestInput input(kind.file);
      input.WithoutSeek().AtMost(777);
      if (!bSize) input.WithoutSize();
      api::test::C_ReaderPtr reader;
      const auto failed = FailureOf([&] {
        reader = C_Reader::Open(OpenInputSource(input.Record()), kind.dwFlags);
        return 0;
      });
      EXPECT_EQ(failed.eStatus, bGoesBack ? VOXPLAY_CANNOT_SEEK : VOXPLAY_OK) << failed.strText;
      if (!reader) continue;
      EXPECT_EQ(SamplesOf(*reader), SamplesOf(*OpenBytes(kind.file, kind.dwFlags)));
    }
  }
}

TEST(ReaderInput, ForwardInput_KnowsTheNotesBeforeItsSamples) {
  C_TestInput input(Kinds()[0].file);
  const auto reader =
      C_Reader::Open(OpenInputSource(input.WithoutSeek().WithoutSize().Record()), 0);
  ASSERT_EQ(reader->Notes().chunks.size(), 1u);
  EXPECT_EQ(reader->Notes().chunks[0].data.size(), 80000u);
  EXPECT_TRUE(reader->Notes().events.empty());
}

TEST(ReaderInput, PipedWavWithoutSizes_IsReadToItsEnd) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0xFFFFFFFF, RampBytes(5000));
  C_TestInput input(riff.RiffSize(0xFFFFFFFF).Take());
  const auto reader =
      C_Reader::Open(OpenInputSource(input.WithoutSeek().WithoutSize().Record()), 0);
  EXPECT_EQ(reader->Info().frames, UINT64_MAX);
  EXPECT_EQ(SamplesOf(*reader).size(), 2500u);
  EXPECT_EQ(reader->Info().frames, 2500u);
}

TEST(ReaderInput, PipedCompressedWav_IsReadToItsEnd) {
  for (const S_Blocks& blocks : OneOfEachKind()) {
    SCOPED_TRACE(blocks.wTag);
    const C_Bytes data = RampBytes(960);
    C_RiffBytes riff("WAVE");
    riff.Chunk("fmt ", BlockFmt(blocks)).Chunk("data", 0xFFFFFFFF, data);
    C_TestInput input(riff.RiffSize(0xFFFFFFFF).Take());
    const auto reader =
        C_Reader::Open(OpenInputSource(input.WithoutSeek().WithoutSize().AtMost(100).Record()), 0);
    EXPECT_EQ(SamplesOf(*reader), SamplesOf(*OpenBytes(CompressedWav(blocks, data).Take())));
  }
}

TEST(ReaderInput, ForwardInputWithItsFormatAfterTheSamples_IsRefused) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("data", RampBytes(100)).Chunk("fmt ", FmtBytes(1, 1, 16000, 16));
  const C_Bytes file = riff.Take();
  C_TestInput input(file);
  const auto failed =
      FailureOf([&] { return C_Reader::Open(OpenInputSource(input.WithoutSeek().Record()), 0); });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(OpenBytes(file)->Info().frames, 50u);
}

TEST(ReaderInput, ClaimOfAHugeChunk_TakesOnlyWhatComes) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("bext", 0xF0000000, RampBytes(1000));
  C_TestInput input(riff.Take());
  const auto failed = FailureOf([&] {
    return C_Reader::Open(OpenInputSource(input.WithoutSeek().WithoutSize().Record()), 0);
  });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(failed.strText,
            "chunks: the format does not come before the samples, and the input only goes forward");
}

// Whichever call fails: either opening or reading fails, or all samples are right. Without the
// size, which may stay unknown, the result is the same.
TEST(ReaderInput, EachFailingCall_IsAFailureAndNeverOtherSamples) {
  for (const S_Kind& kind : Kinds()) {
    SCOPED_TRACE(kind.pszName);
    const C_Samples16 expected = SamplesOf(*OpenBytes(kind.file, kind.dwFlags));
    int nFailures = 0;
    for (int nCall = 1;; ++nCall) {
      C_TestInput input(kind.file);
      input.AtMost(4000).FailingAt(nCall);
      C_Samples16 samples;
      const auto failed = FailureOf([&] {
        const auto reader = C_Reader::Open(OpenInputSource(input.Record()), kind.dwFlags);
        samples = SamplesOf(*reader);
        return 0;
      });
      if (!input.HasFailed()) break;
      EXPECT_TRUE(failed.eStatus == VOXPLAY_CANNOT_READ || samples == expected)
          << nCall << failed.strText;
      nFailures += failed.eStatus == VOXPLAY_CANNOT_READ ? 1 : 0;
    }
    EXPECT_GE(nFailures, 2);
  }
}

TEST(ReaderInput, SeekBackThatWouldLeaveAGap_IsRefused) {
  const C_Bytes file = MonoWav(1200000).Take();
  const C_Samples16 all = SamplesOf(*OpenBytes(file));
  C_TestInput input(file);
  const auto reader =
      C_Reader::Open(OpenInputSource(input.WithoutSeek().WithoutSize().Record()), 0);
  C_Samples16 samples(500000);
  ASSERT_EQ(reader->Samples().Read(std::span(samples)), 500000u);
  const auto failed = FailureOf([&] {
    reader->Samples().Seek(0);
    return 0;
  });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_SEEK);
  EXPECT_EQ(reader->Samples().Position(), 500000u);
  EXPECT_EQ(SamplesOf(*reader), C_Samples16(all.begin() + 500000, all.end()));
}

TEST(ReaderInput, SeekBackToWhatIsHeld_GivesAllThatFollows) {
  const C_Bytes file = MonoWav(1200000).Take();
  const C_Samples16 all = SamplesOf(*OpenBytes(file));
  C_TestInput input(file);
  const auto reader =
      C_Reader::Open(OpenInputSource(input.WithoutSeek().WithoutSize().Record()), 0);
  C_Samples16 samples(30000);
  ASSERT_EQ(reader->Samples().Read(std::span(samples)), 30000u);
  reader->Samples().Seek(1);
  EXPECT_EQ(SamplesOf(*reader), C_Samples16(all.begin() + 1, all.end()));
}

TEST(ReaderInput, LiveInputs_GiveTheirFirstFrameWhenItIsThere) {
  const C_Bytes kestrel = C_KestrelBytes(16000).Voice(300).Take();
  for (const C_Bytes& file : {C_SpBytes().Stream(kestrel).Take(), kestrel}) {
    C_TestInput input(file);
    input.WithoutSeek().WithoutSize().WithoutTell().AtMost(20);
    const auto reader = C_Reader::Open(OpenInputSource(input.Record()), 0);
    C_Samples16 samples(320);
    ASSERT_EQ(reader->Samples().Read(std::span(samples)), 320u);
    // 48 bytes of header, 6 of head and 40 of a frame.
    EXPECT_LE(input.Reads(), 5);
  }
}

TEST(ReaderInput, ClaimedLength_TakesNoMemory) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("bext", 0x30000000, RampBytes(1000));
  C_TestInput input(riff.Take());
  voxplay_input record = input.Record();
  record.size = [](void*) { return std::int64_t{0x40000000}; };
  ResetLargestAllocation();
  EXPECT_NE(FailureOf([&] { return C_Reader::Open(OpenInputSource(record), 0); }).eStatus,
            VOXPLAY_OK);
  EXPECT_LT(LargestAllocation(), 200000u);
}

TEST(ReaderInput, PaddingOfZeros_TakesNoMemory) {
  const C_Bytes file = MonoWav(0).Chunk("JUNK", C_Bytes(5000000)).Chunk("abcd", {1, 2}).Take();
  C_TestInput input(file);
  ResetLargestAllocation();
  const auto reader = C_Reader::Open(OpenInputSource(input.Record()), 0);
  EXPECT_LT(LargestAllocation(), 200000u);
  ASSERT_EQ(reader->Notes().chunks.size(), 1u);
  EXPECT_EQ(reader->Notes().chunks[0].data, (C_Bytes{1, 2}));
}

TEST(ReaderInput, PaddingThatHoldsSomething_IsKept) {
  for (const std::size_t nAt : {0u, 4095u, 4096u, 90000u, 99999u}) {
    C_Bytes padding(100000);
    padding[nAt] = 1;
    C_RiffBytes riff("WAVE");
    riff.Chunk("JUNK", padding).Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", {1, 2});
    for (const bool bForward : {false, true}) {
      C_TestInput input(riff.Take());
      if (bForward) input.WithoutSeek().WithoutSize();
      input.AtMost(700);
      const auto reader = C_Reader::Open(OpenInputSource(input.Record()), 0);
      ASSERT_EQ(reader->Notes().chunks.size(), 1u) << nAt;
      EXPECT_EQ(reader->Notes().chunks[0].data, padding) << nAt;
    }
  }
}
