// SPDX-License-Identifier: Apache-2.0
//
// The reader opens what the class library opens, with the same samples, and refuses the rest: files
// of all kinds, whole, cut and damaged.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "GeneratedRiff.h"
#include "HeronBytes.h"
#include "KestrelBytes.h"
#include "ReadMore.h"
#include "ReadSounds.h"
#include "SpBytes.h"
#include "SweepFile.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "file/KestrelFile.h"
#include "riff/RiffScan.h"

namespace {

using api::test::C_Random;
using api::test::C_ReaderPtr;
using api::test::FailureOf;

constexpr std::string_view kAdtl = "adtl";

C_WavFilePtr OpenedByClass(const C_Bytes& bytes, bool bKeepEncoded) {
  const C_SweepFile file(bytes);
  C_WavFileFormat format;
  return C_WavFilePtr(
      format.CreateWavFile(file.Path().c_str(), true, bKeepEncoded, nullptr, nullptr));
}

// What the player does with a file that no class opens.
C_WavFilePtr OpenedAsBareKestrel(const C_Bytes& bytes) {
  const C_SweepFile file(C_SpBytes().Stream(bytes).Take());
  auto kestrel = std::make_unique<C_KestrelFile>();
  if (!kestrel->LoadByName(file.Path().c_str(), true, nullptr, nullptr)) return nullptr;
  return C_WavFilePtr(kestrel.release());
}

struct S_Attempt {
  C_ReaderPtr reader;
  voxplay_status eStatus = VOXPLAY_OK;
  std::string strText;
};

S_Attempt OpenedByReader(const C_Bytes& bytes, std::uint32_t dwFlags) {
  S_Attempt attempt;
  const auto failed = FailureOf([&] {
    attempt.reader = api::test::OpenBytes(bytes, dwFlags);
    return 0;
  });
  attempt.eStatus = failed.eStatus;
  attempt.strText = failed.strText;
  return attempt;
}

// The PCM of the class library in full scale, in as much room as the reader says.
std::vector<std::int32_t> FullScale(I_WavFile& file, std::uint32_t dwStoredBits) {
  const std::vector<std::uint8_t> pcm = PcmOf(file);
  const std::size_t cbSample = dwStoredBits / 8;
  std::vector<std::int32_t> samples;
  for (std::size_t n = 0; pcm.size() - n >= cbSample; n += cbSample) {
    std::uint32_t dwValue = 0;
    for (std::size_t i = cbSample; i > 0; --i) dwValue = dwValue << 8U | pcm[n + i - 1];
    if (cbSample == 1) dwValue -= 0x80U;
    samples.push_back(static_cast<std::int32_t>(dwValue << (32 - dwStoredBits)));
  }
  const std::size_t nChannels = file.GetWavInfo()->GetChannels();
  samples.resize(samples.size() / nChannels * nChannels);
  return samples;
}

void CompareSounds(I_WavFile& file, api::C_Reader& reader) {
  const voxplay_info info = reader.Info();
  EXPECT_EQ(info.sample_rate, file.GetWavInfo()->GetSampleRate());
  EXPECT_EQ(info.channels, file.GetWavInfo()->GetChannels());
  const std::uint32_t dwStoredBits = info.stored_bits == 0 ? 16 : info.stored_bits;
  const auto expected = FullScale(file, dwStoredBits);
  EXPECT_EQ(info.frames, expected.size() / info.channels);
  EXPECT_EQ(api::test::SamplesOf<std::int32_t>(reader), expected);
}

void CompareEvents(I_WavFile& file, const api::S_Notes& notes) {
  // The class library counts in time, and has no events in a sound without a rate.
  if (file.GetWavInfo()->GetSampleRate() == 0) return;
  std::vector<S_EventSeen> seen;
  for (const api::S_NoteEvent& event : notes.events) {
    seen.push_back({event.wMain, event.wSub, static_cast<unsigned int>(event.qwFrame)});
  }
  EXPECT_EQ(seen, EventsOf(file));
}

bool IsExtra(const voxplay_info& info) {
  return info.container == VOXPLAY_CONTAINER_HEAD || info.codec == VOXPLAY_CODEC_FLOAT;
}

// The only files that the reader refuses by itself.
bool IsWide(I_WavFile& file) { return file.GetWavInfo()->GetBitsPerSample() > 32; }

struct S_Counts {
  int nBoth = 0;
  int nNone = 0;
  int nExtra = 0;
  int nWide = 0;
};

void Compare(const C_Bytes& bytes, std::uint32_t dwFlags, S_Counts& counts) {
  const bool bStream = (dwFlags & VOXPLAY_READ_STREAM) != 0;
  C_WavFilePtr file = OpenedByClass(bytes, !bStream);
  if (!file && (dwFlags & VOXPLAY_READ_NO_BARE) == 0) file = OpenedAsBareKestrel(bytes);
  const S_Attempt attempt = OpenedByReader(bytes, dwFlags);
  if (api::test::IsReadMoreOf(bytes) || (attempt.reader && IsExtra(attempt.reader->Info()))) {
    ++counts.nExtra;
  } else if (attempt.reader && file) {
    ++counts.nBoth;
    CompareSounds(*file, *attempt.reader);
    CompareEvents(*file, attempt.reader->Notes());
  } else if (file) {
    EXPECT_TRUE(IsWide(*file)) << attempt.strText;
    ++counts.nWide;
  } else {
    EXPECT_FALSE(attempt.reader) << "the class library refuses this";
    ++counts.nNone;
  }
}

// Streams are made once, because encoding takes long.
const std::vector<C_Bytes>& Streams() {
  static const std::vector<C_Bytes> streams = [] {
    std::vector<C_Bytes> made;
    for (const unsigned int dwRate : {7200U, 16000U, 32000U}) {
      made.push_back(C_KestrelBytes(dwRate).Voice(3).Take());
    }
    for (const heron::test::S_Kind& kind : heron::test::kKinds) {
      made.push_back(C_HeronBytes(kind, TestVoice(1500), 8000).Take());
    }
    return made;
  }();
  return streams;
}

C_Bytes RandomStream(C_Random& random) {
  return Streams()[random.Below(static_cast<std::uint32_t>(Streams().size()))];
}

std::uint16_t RandomType(C_Random& random) {
  constexpr std::array<std::uint16_t, 8> kTypes = {14, 14, 32, 33, 34, 35, 36, 7};
  return random.Of(kTypes);
}

C_Bytes RandomSp(C_Random& random) {
  constexpr std::array<std::uint32_t, 4> kRates = {8000, 16000, 3999, 48001};
  C_SpBytes sp;
  sp.ID(RandomType(random)).Freq(random.Of(kRates)).Stream(RandomStream(random));
  if (random.OneIn(5)) sp.Text("ORBITAL SPEECH");
  if (random.OneIn(8)) sp.Version(static_cast<std::uint8_t>(250 + random.Below(6)));
  if (random.OneIn(12)) sp.Kind(3);
  return sp.Take();
}

C_Bytes RandomVef(C_Random& random) {
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 1, 8000, random.OneIn(3) ? 8 : 16));
  riff.Chunk("data", random.Bytes(random.Below(60)));
  if (!random.OneIn(5)) riff.Chunk("vafm", VafmBytes(RandomType(random)));
  if (random.OneIn(9)) riff.Chunk("vafm", random.Bytes(random.Below(20)));
  if (!random.OneIn(8)) riff.Chunk("vdat", RandomStream(random));
  if (random.OneIn(9)) riff.Chunk("vdat", RandomStream(random));
  return riff.Take();
}

template <typename Make>
S_Counts CompareMany(std::uint32_t dwSeed, int nFiles, std::uint32_t dwFlags, Make&& make) {
  C_Random random(dwSeed);
  S_Counts counts;
  for (int i = 0; i < nFiles && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    Compare(make(random), dwFlags, counts);
  }
  return counts;
}

// The class library stops the program when a label lost its cue point, so only files without marks
// are damaged.
C_Bytes RandomDamagedRiff(C_Random& random) {
  const C_Bytes file = api::test::RandomRiff(random);
  const bool bMarks =
      std::search(file.begin(), file.end(), kAdtl.begin(), kAdtl.end()) != file.end();
  return bMarks ? file : api::test::Damaged(file, random);
}

}  // namespace

TEST(ReaderClassLibrary, RiffFiles_OpenAlike) {
  const S_Counts counts = CompareMany(3, 2500, VOXPLAY_READ_NO_BARE, &api::test::RandomRiff);
  EXPECT_GT(counts.nBoth, 1000);
  EXPECT_GT(counts.nNone, 200);
  EXPECT_GT(counts.nWide, 20);
}

TEST(ReaderClassLibrary, DamagedRiffFiles_OpenAlike) {
  const S_Counts counts = CompareMany(4, 3000, 0, &RandomDamagedRiff);
  EXPECT_GT(counts.nBoth, 500);
  EXPECT_GT(counts.nNone, 500);
}

TEST(ReaderClassLibrary, FilesWithSpHeaders_OpenAlike) {
  const S_Counts counts = CompareMany(5, 700, 0, &RandomSp);
  EXPECT_GT(counts.nBoth, 80);
  EXPECT_GT(counts.nNone, 150);
}

TEST(ReaderClassLibrary, DamagedFilesWithSpHeaders_OpenAlike) {
  const S_Counts counts = CompareMany(
      6, 1300, 0, [](C_Random& random) { return api::test::Damaged(RandomSp(random), random); });
  EXPECT_GT(counts.nBoth, 40);
  EXPECT_GT(counts.nNone, 300);
}

TEST(ReaderClassLibrary, StreamsInVefFiles_OpenAlike) {
  const S_Counts counts = CompareMany(7, 600, VOXPLAY_READ_STREAM, &RandomVef);
  EXPECT_GT(counts.nBoth, 150);
  EXPECT_GT(counts.nNone, 100);
}

TEST(ReaderClassLibrary, DamagedVefFiles_OpenAlike) {
  for (const std::uint32_t dwFlags : {0U, std::uint32_t{VOXPLAY_READ_STREAM}}) {
    const S_Counts counts = CompareMany(8, 500, dwFlags, [](C_Random& random) {
      return api::test::Damaged(RandomVef(random), random);
    });
    EXPECT_GT(counts.nBoth, 40);
    EXPECT_GT(counts.nNone, 100);
  }
}

TEST(ReaderClassLibrary, BareStreams_OpenWhereThePlayerOpensThem) {
  const S_Counts counts = CompareMany(9, 900, 0, [](C_Random& random) {
    const C_Bytes stream = Streams()[random.Below(3)];
    return random.OneIn(3) ? stream : api::test::Damaged(stream, random);
  });
  EXPECT_GT(counts.nBoth, 300);
  EXPECT_GT(counts.nNone, 100);
}
