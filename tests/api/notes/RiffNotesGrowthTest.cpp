// SPDX-License-Identifier: Apache-2.0
//
// Ten times the marks cost about ten times the work.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "CountedWork.h"
#include "HeldChunks.h"
#include "ManyCuePoints.h"
#include "WavBytes.h"
#include "notes/NoteEdits.h"

namespace api::test {
namespace {

constexpr std::uint32_t kFew = 3'000;
constexpr std::uint32_t kMany = 30'000;
constexpr std::uint64_t kMostTimes = 14;  // ten times, and room for searching in a larger table
constexpr std::size_t kTimesTheFile = 16;

using C_PartOf = std::function<C_Bytes(std::uint32_t)>;
C_Bytes List(std::uint32_t nCount, const C_PartOf& fnPart) {
  vcm::C_ByteWriter list;
  list.Text("adtl", 4);
  for (std::uint32_t i = 0; i < nCount; ++i) list.Bytes(fnPart(i));
  return list.Take();
}

std::vector<S_HeldChunk> Labelled(std::uint32_t nCount, const C_PartOf& fnPart) {
  return {Held("cue ", CuePoints(nCount)), Held("LIST", List(nCount, fnPart))};
}

C_Bytes RangeParts(std::uint32_t i, const char* pszLabel) {
  return Join({LablBytes(FarID(i), pszLabel), LtxtBytes(FarID(i), 1)});
}

struct S_Case {
  const char* pszName;
  E_RiffForm eForm;
  std::vector<S_HeldChunk> (*pfnMake)(std::uint32_t nCount);
};

const S_Case kCases[] = {
    {"CuePoints", E_RiffForm::Wave,
     [](std::uint32_t n) { return std::vector{Held("cue ", CuePoints(n))}; }},
    {"CuePointsOfOneIdentifier", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return std::vector{Held("cue ", Join({U32(n), C_Bytes(n * std::size_t{24})})),
                          Held("LIST", AdtlBytes({LablBytes(0, "u_1_1")}))};
     }},
    {"Loops", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return std::vector{
           Held("smpl", Join({C_Bytes(28), U32(n), U32(0), C_Bytes(n * std::size_t{24})}))};
     }},
    {"Events", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t i) { return LablBytes(FarID(i), "u_1_2"); });
     }},
    {"EventsOfAContainer", E_RiffForm::Vef,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t i) { return LablBytes(FarID(i), "(65538,7)"); });
     }},
    {"EventsOfOthers", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t i) { return OthersLabel(FarID(i), "take_1"); });
     }},
    {"Silence", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t i) { return RangeParts(i, "VX_Silence"); });
     }},
    {"Regions", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t i) { return RangeParts(i, "VX_PCM"); });
     }},
    {"LabelsOfOthers", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t i) { return OthersLabel(FarID(i), "Verse"); });
     }},
    {"LabelsOfOneCuePoint", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t) { return OthersLabel(0, "take_1"); });
     }},
    {"UnknownParts", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return Labelled(n, [](std::uint32_t) { return PaddedPart("file", {1}); });
     }},
    {"SupersededLists", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return std::vector(n, Held("LIST", AdtlBytes({OthersLabel(1, "Verse")})));
     }},
    {"SupersededListsOfUnknownParts", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return std::vector(n, Held("LIST", AdtlBytes({PaddedPart("file", {1})})));
     }},
    {"SupersededCuePoints", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return std::vector(n, Held("cue ", CueBytes({{1, 2, 3}})));
     }},
    {"Chunks", E_RiffForm::Wave,
     [](std::uint32_t n) {
       return std::vector(n, Held("priv", {1, 2}));
     }},
};

class RiffNotesGrowth : public testing::TestWithParam<S_Case> {
 protected:
  struct S_Cost {
    S_Work read;
    S_Work write;
    std::size_t cbFile = 0;
  };
  static S_Cost CostOf(std::uint32_t nCount) {
    std::vector<S_HeldChunk> chunks = GetParam().pfnMake(nCount);
    S_Cost cost;
    for (const S_HeldChunk& chunk : chunks) cost.cbFile += 8 + chunk.data.size();
    const C_CountedWork reading;
    const S_Notes notes = ReadRiffNotes(std::move(chunks), GetParam().eForm, false);
    cost.read = reading.Done();
    const C_CountedWork writing;
    const S_RiffNotes written = WriteRiffNotes(notes, GetParam().eForm, 16000);
    cost.write = writing.Done();
    EXPECT_TRUE(written.lost.empty());
    return cost;
  }
};

TEST_P(RiffNotesGrowth, TenTimesTheMarks_CostTenTimesTheWorkAndNoExcessOfMemory) {
  const S_Cost few = CostOf(kFew);
  const S_Cost many = CostOf(kMany);
  EXPECT_GT(few.read.qwBlocks, kFew) << "the work is not counted";
  EXPECT_LE(many.read.qwBlocks, kMostTimes * few.read.qwBlocks) << few.read.qwBlocks;
  EXPECT_LE(many.write.qwBlocks, kMostTimes * few.write.qwBlocks) << few.write.qwBlocks;
  EXPECT_LE(many.read.cbPeak, kTimesTheFile * many.cbFile);
  EXPECT_LE(many.write.cbPeak, kTimesTheFile * many.cbFile);
}

INSTANTIATE_TEST_SUITE_P(All, RiffNotesGrowth, testing::ValuesIn(kCases),
                         [](const auto& parameters) { return parameters.param.pszName; });

TEST(NoteEditsGrowth, TenTimesTheEventsAddedBackwards_CostTenTimesTheWork) {
  const auto blocks = [](std::uint32_t nCount) {
    S_Notes notes;
    const C_CountedWork adding;
    for (std::uint32_t i = nCount; i > 0; --i) {
      static_cast<void>(AddEvent(notes, {i, 1, 1, 0, ""}));
      static_cast<void>(AddRange(notes.silence, {i, 1}));
    }
    PutInOrder(notes);
    return adding.Done().qwBlocks;
  };
  EXPECT_LE(blocks(kMany), kMostTimes * blocks(kFew));
}

}  // namespace
}  // namespace api::test
