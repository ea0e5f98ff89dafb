// SPDX-License-Identifier: Apache-2.0
//
// The reader opens what the class library opens, with the same samples, and refuses the rest: files
// of all kinds, whole, cut and damaged.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ClassLibraryComparison.h"
#include "GeneratedRiff.h"
#include "HeronBytes.h"
#include "KestrelBytes.h"

namespace {

using api::test::C_Random;
using api::test::Compare;
using api::test::S_Counts;

constexpr std::string_view kAdtl = "adtl";

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
