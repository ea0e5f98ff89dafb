// SPDX-License-Identifier: Apache-2.0
//
// The chunks that the class library lists, for files of many kinds, whole, cut and damaged.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "GeneratedRiff.h"
#include "ReadMore.h"
#include "RiffFile.h"
#include "SweepFile.h"
#include "riff/RiffScan.h"

namespace {

constexpr std::array<const char*, 3> kForms = {"WAVE", "VEMD", "VEFF"};

struct S_Seen {
  std::string strID;
  std::uint64_t qwAt;
  std::uint64_t qwSize;
  friend bool operator==(const S_Seen&, const S_Seen&) = default;
};

void PrintTo(const S_Seen& seen, std::ostream* pStream) {
  *pStream << seen.strID << " " << seen.qwAt << "+" << seen.qwSize;
}

std::vector<S_Seen> ListedByClass(C_RiffFile& riff) {
  std::vector<S_Seen> seen;
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    seen.push_back({std::string(chunk.GetChunkID(), 4), chunk.GetDataPos(), chunk.GetDataLength()});
  }
  return seen;
}

std::vector<S_Seen> ListedByScan(const api::S_RiffContents& contents) {
  std::vector<S_Seen> seen;
  for (const api::S_FoundChunk& chunk : contents.chunks) {
    seen.push_back(
        {std::string(chunk.id.begin(), chunk.id.end()), chunk.payload.qwAt, chunk.payload.qwSize});
  }
  return seen;
}

bool IsOurs(const api::S_RiffContents& contents) {
  return !contents.bRf64 && std::ranges::any_of(kForms, [&](const char* pszForm) {
    return std::memcmp(contents.form.data(), pszForm, 4) == 0;
  });
}

// Compares; returns whether the listing is meant to be another one here.
bool Compare(const C_Bytes& bytes) {
  const C_SweepFile file(bytes);
  C_RiffFile riff;
  const bool bOpens = riff.OpenAny(file.Path().c_str(), kForms).has_value();
  const auto source = api::OpenMemorySource(bytes);
  const auto contents = api::ScanRiff(*source);
  EXPECT_EQ(bOpens, contents.has_value() && IsOurs(*contents));
  if (!bOpens || !contents) return false;
  if (contents->bToTheEnd || api::test::HasOtherPad(*contents, bytes)) return true;
  EXPECT_EQ(ListedByScan(*contents), ListedByClass(riff));
  EXPECT_EQ(contents->bCutShort, riff.IsCutShort());
  return false;
}

}  // namespace

TEST(RiffScanClassLibrary, GeneratedFiles_HaveTheSameChunks) {
  api::test::C_Random random(1);
  int nOther = 0;
  for (int i = 0; i < 4000 && !HasFailure(); ++i) {
    const C_Bytes file = api::test::RandomRiff(random);
    SCOPED_TRACE(i);
    nOther += Compare(file) ? 1 : 0;
    nOther += Compare(api::test::Damaged(file, random)) ? 1 : 0;
  }
  // The others were compared.
  EXPECT_LT(nOther, 1500);
}

TEST(RiffScanClassLibrary, FileCutAtEachByte_HasTheSameChunks) {
  C_RiffBytes riff("VEMD");
  riff.Chunk("fmt ", C_Bytes(16, 1)).Zeros(3).Chunk("odd ", C_Bytes(5, 2)).Zeros(1);
  riff.Chunk("data", C_Bytes(20, 3)).Chunk("LIST", 4000, Ascii("adtl")).Zeros(30);
  const C_Bytes file = riff.Take();
  for (std::size_t cb = 0; cb <= file.size(); ++cb) {
    SCOPED_TRACE(cb);
    Compare({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(cb)});
  }
}

TEST(RiffScanClassLibrary, EveryRiffSize_EndsTheListingAtTheSamePlace) {
  for (std::uint32_t dwSize = 1; dwSize < 120; ++dwSize) {
    C_RiffBytes riff("WAVE");
    riff.Chunk("fmt ", C_Bytes(16, 1)).Zeros(9).Chunk("abcd", C_Bytes(20, 3)).Zeros(20);
    riff.Chunk("last", C_Bytes(3, 1));
    SCOPED_TRACE(dwSize);
    EXPECT_FALSE(Compare(riff.RiffSize(dwSize).Take()));
  }
}
