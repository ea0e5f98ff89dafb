// SPDX-License-Identifier: Apache-2.0
//
// Ten times the chunks, cue points, labels or events cost about ten times the work, and no file
// makes the library use much more memory than the file is long.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "CountedWork.h"
#include "ManyCuePoints.h"
#include "TempFolder.h"
#include "VefBytes.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"
#include "file/VefFile.h"
#include "sound/WavData.h"

namespace {

constexpr std::uint32_t kFew = 10'000;
constexpr std::uint32_t kMany = 100'000;
constexpr std::uint64_t kMostTimes = 12;  // ten times, and room for searching in a larger table
constexpr std::size_t kTimesTheFile = 16;
constexpr std::size_t kFixedMemory = 8U << 20;

// A label, and perhaps a labelled text, for each cue point.
C_Bytes Labels(std::uint32_t nCount, const std::function<std::string(std::uint32_t)>& fnText,
               bool bLtxt) {
  vcm::C_ByteWriter list;
  list.Text("adtl", 4);
  for (std::uint32_t i = 0; i < nCount; ++i) {
    list.Bytes(LablBytes(FarID(i), fnText(i)));
    if (bLtxt) list.Bytes(LtxtBytes(FarID(nCount - 1 - i), 1));
  }
  return list.Take();
}

C_Bytes Annotated(C_RiffBytes riff, std::uint32_t nCount,
                  const std::function<std::string(std::uint32_t)>& fnText, bool bLtxt) {
  return riff.Chunk("cue ", CuePoints(nCount)).Chunk("LIST", Labels(nCount, fnText, bLtxt)).Take();
}

C_Bytes Repeated(const char* pszID, const C_Bytes& payload, std::uint32_t nCount) {
  const C_Bytes chunk = ChunkBytes(pszID, payload);
  C_Bytes all;
  for (std::uint32_t i = 0; i < nCount; ++i) all.insert(all.end(), chunk.begin(), chunk.end());
  return all;
}

C_Bytes Loops(std::uint32_t nCount) {
  vcm::C_ByteWriter smpl;
  smpl.Zeros(28);
  smpl.U32(nCount);
  smpl.U32(0);
  for (std::uint32_t i = 0; i < nCount; ++i) {
    smpl.U32(FarID(i));
    smpl.Zeros(20);
  }
  return smpl.Take();
}

using Maker = C_Bytes (*)(std::uint32_t nCount);
struct S_Case {
  const char* pszName;
  Maker pfnMake;
};

const S_Case kCases[] = {
    {"EmptyChunks", [](std::uint32_t n) { return MonoWav(8).Raw(Repeated("junk", {}, n)).Take(); }},
    {"ExtraChunks",
     [](std::uint32_t n) {
       return MonoWav(8).Raw(Repeated("junk", {1, 2}, n)).Take();
     }},
    {"FormatChunks",
     [](std::uint32_t n) {
       return MonoWav(8).Raw(Repeated("fmt ", FmtBytes(1, 1, 8000, 16), n)).Take();
     }},
    {"DataChunks",
     [](std::uint32_t n) {
       return MonoWav(8).Raw(Repeated("data", {1, 2}, n)).Take();
     }},
    {"CueChunks",
     [](std::uint32_t n) {
       return MonoWav(8).Raw(Repeated("cue ", CueBytes({{1, 2, 3}}), n)).Take();
     }},
    {"ListChunks",
     [](std::uint32_t n) {
       return MonoWav(8).Raw(Repeated("LIST", AdtlBytes({LablBytes(1, "x")}), n)).Take();
     }},
    {"Zeros", [](std::uint32_t n) { return MonoWav(8).Zeros(n * std::size_t{10}).Take(); }},
    {"CuePoints", [](std::uint32_t n) { return MonoWav(8).Chunk("cue ", CuePoints(n)).Take(); }},
    {"CuePointsOfOneIdentifier",
     [](std::uint32_t n) {
       return MonoWav(8).Chunk("cue ", Join({U32(n), C_Bytes(n * std::size_t{24})})).Take();
     }},
    {"Loops", [](std::uint32_t n) { return MonoWav(8).Chunk("smpl", Loops(n)).Take(); }},
    {"Events",
     [](std::uint32_t n) {
       return Annotated(
           MonoWav(16), n, [](auto) { return "u_1_2"; }, false);
     }},
    {"OldEvents",
     [](std::uint32_t n) {
       return Annotated(
           MonoWav(16), n, [](auto i) { return "e_" + std::to_string(i); }, false);
     }},
    {"SilenceSegments",
     [](std::uint32_t n) {
       return Annotated(
           MonoWav(16), n, [](auto) { return "VX_Silence"; }, true);
     }},
    {"Regions",
     [](std::uint32_t n) {
       return Annotated(
           MonoWav(16), n, [](auto) { return "VX_PCM"; }, true);
     }},
    {"LabelsOfOthers",
     [](std::uint32_t n) {
       return Annotated(
           MonoWav(16), n, [](auto) { return "Verse"; }, true);
     }},
    {"ContainerEvents",
     [](std::uint32_t n) {
       return Annotated(
           MonoVef(16), n, [](auto i) { return "(65538," + std::to_string(i) + ")"; }, false);
     }},
    {"ContainerLabelsOfOthers",
     [](std::uint32_t n) {
       return Annotated(
           MonoVef(16), n, [](auto) { return "Verse"; }, true);
     }},
    {"ContainerEventChunks",
     [](std::uint32_t n) {
       return MonoVef(8).Raw(Repeated("vevt", {1, 2}, n)).Take();
     }},
    {"ContainerStreamChunks",
     [](std::uint32_t n) {
       return MonoVef(8).Raw(Repeated("vdat", {1, 2}, n)).Take();
     }},
};

class GrowthTest : public testing::TestWithParam<S_Case> {
 protected:
  struct S_Cost {
    S_Work load;
    S_Work write;
    std::size_t cbFile = 0;
  };
  S_Cost CostOf(std::uint32_t nCount) {
    const C_Bytes bytes = GetParam().pfnMake(nCount);
    const std::string strPath = m_folder.Write("in", bytes);
    const bool bContainer = bytes[8] == 'V';
    const std::unique_ptr<C_WavFileBase, S_WavFileReleaser> file(
        bContainer ? static_cast<C_WavFileBase*>(new C_VefFile) : new C_WavFile);
    S_Cost cost;
    cost.cbFile = bytes.size();
    const C_CountedWork loading;
    EXPECT_TRUE(file->LoadByName(strPath.c_str(), true, nullptr, nullptr));
    cost.load = loading.Done();
    const C_CountedWork writing;
    EXPECT_TRUE(Write(*file, m_folder.Path("out")));
    cost.write = writing.Done();
    return cost;
  }

  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_P(GrowthTest, TenTimesTheContents_CostTenTimesTheWorkAndNoExcessOfMemory) {
  const S_Cost few = CostOf(kFew);
  const S_Cost many = CostOf(kMany);
  EXPECT_GT(few.load.qwBlocks, kFew) << "the work is not counted";
  EXPECT_LE(many.load.qwBlocks, kMostTimes * few.load.qwBlocks) << few.load.qwBlocks;
  EXPECT_LE(many.write.qwBlocks, kMostTimes * few.write.qwBlocks) << few.write.qwBlocks;
  EXPECT_LE(many.load.cbPeak, kTimesTheFile * many.cbFile + kFixedMemory);
  EXPECT_LE(many.write.cbPeak, kTimesTheFile * many.cbFile + kFixedMemory);
}

// The work of additions, one by one, that callers make.
TEST(Growth, TenTimesTheSegmentsAddedOneByOne_CostTenTimesTheWork) {
  const auto blocks = [](std::uint32_t nCount) {
    C_WavData sound;
    const C_CountedWork adding;
    for (std::uint32_t i = 0; i < nCount; ++i) {
      const std::uint32_t dwStart = (i % 2 == 0 ? i : 2 * nCount - i) * 10;
      sound.AddSilenceSegment(dwStart, dwStart + 8);
      sound.AddUncompressRegion(dwStart, dwStart + 8);
    }
    return adding.Done().qwBlocks;
  };
  // Each search takes a quarter more steps among ten times as many.
  EXPECT_LE(blocks(kMany), 13 * blocks(kFew));
}

// The work of adding nCount segments in a certain way.
using Adder = void (*)(C_WavData& sound, std::uint32_t i);
std::uint64_t WorkOfAdding(std::uint32_t nCount, Adder pfnAdd) {
  C_WavData sound;
  const C_CountedWork adding;
  for (std::uint32_t i = 0; i < nCount; ++i) pfnAdd(sound, i);
  return adding.Done().qwBlocks;
}

struct S_Addition {
  const char* pszName;
  Adder pfnAdd;
};
class AdditionTest : public testing::TestWithParam<S_Addition> {};

TEST_P(AdditionTest, TenTimesAsMany_CostTenTimesTheWork) {
  const std::uint64_t qwFew = WorkOfAdding(kFew, GetParam().pfnAdd);
  EXPECT_GT(qwFew, kFew) << "the work is not counted";
  EXPECT_LE(WorkOfAdding(kMany, GetParam().pfnAdd), 13 * qwFew);
}

const S_Addition kAdditions[] = {
    {"SegmentsThatMeetOneOrTwo",
     [](C_WavData& sound, std::uint32_t i) {
       sound.AddSilenceSegment(i * 20, i * 20 + 8);
       if (i % 2 == 1) sound.AddSilenceSegment(i * 20 - 15, i * 20 - 10);
       if (i % 64 == 63) sound.AddSilenceSegment(i * 20 - 50, i * 20 - 12);
     }},
    {"SegmentsThatEndBeforeTheyStart",
     [](C_WavData& sound, std::uint32_t i) { sound.AddSilenceSegment(i * 3, i * 3 - 1); }},
    {"SegmentsThatEndBeforeTheyStartAndOthers",
     [](C_WavData& sound, std::uint32_t i) {
       sound.AddSilenceSegment(i * 30, i % 8 == 0 ? i * 30 - 1 : i * 30 + 9);
     }},
    {"SegmentsThatAreThenChanged",
     [](C_WavData& sound, std::uint32_t i) {
       auto& list = *sound.AddSilenceSegment(i * 10, i * 10);
       list.GetItemByIndex(list.GetSize() - 1)->SetEndSamplePos(i * 10 + 8);
     }},
    {"TheSameSegment", [](C_WavData& sound, std::uint32_t) { sound.AddSilenceSegment(100, 200); }},
    {"EventsAtOneMoment",
     [](C_WavData& sound, std::uint32_t i) {
       if (i == 0) sound.GetEventTagMgr()->AddEvent(1, 2, 1000, "", 0);
       sound.GetEventTagMgr()->AddEvent(1, 2, 500, "", 0);
     }},
    {"EventsAtTenMomentsInSamples",
     [](C_WavData& sound, std::uint32_t i) {
       if (i == 0) sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
       sound.GetEventTagMgr()->AddEventBySamplePos(1, 2, i % 10, "", 0);
     }},
    {"EventsInBothUnits",
     [](C_WavData& sound, std::uint32_t i) {
       if (i == 0) sound.SetWavInfoData(8000, 0, 1, 16, 16, true);
       sound.GetEventTagMgr()->AddEventBySamplePos(1, 2, i % 2 * 800, "", 0);
       sound.GetEventTagMgr()->AddEvent(1, 2, i % 2 * 100, "", 0);
     }},
    {"EventsAfterOneWasMoved",
     [](C_WavData& sound, std::uint32_t i) {
       if (i == 100) sound.GetEventTagMgr()->AddEvent(1, 2, 999, "", 0)->SetTime(1000);
       sound.GetEventTagMgr()->AddEvent(1, 2, 500, "", 0);
     }},
    {"EventsThatAreFoundAndTakenOutByTime",
     [](C_WavData& sound, std::uint32_t i) {
       I_EventTagMgr& events = *sound.GetEventTagMgr();
       events.AddEvent(1, 2, i, "", 0);
       if (events.GetEventsByTime(i / 2)->GetSize() == 0 || i % 4 != 3) return;
       const std::unique_ptr<I_EventTag> taken(events.GetEventsByTime(i / 2)->GetItemByIndex(0));
       events.RemoveEventByTime(i / 2, 0);
     }},
};

TEST(Growth, TenTimesTheEventsTakenOutByCommand_CostTenTimesTheWork) {
  const auto blocks = [](std::uint32_t nCount) {
    C_WavData sound;
    I_EventTagMgr& events = *sound.GetEventTagMgr();
    for (std::uint32_t i = 0; i < nCount; ++i) events.AddEvent(1, i % 2 != 0 ? 2 : 3, i, "", 0);
    auto& found = *events.GetEventsByCommand(1, 2);
    std::vector<std::unique_ptr<I_EventTag>> taken;
    for (int i = 0; i < found.GetSize(); ++i) taken.emplace_back(found.GetItemByIndex(i));
    const C_CountedWork removing;
    events.RemoveEventsByCommand(1, 2);
    return removing.Done().qwBlocks;
  };
  EXPECT_LE(blocks(kMany), kMostTimes * blocks(kFew));
}
INSTANTIATE_TEST_SUITE_P(All, AdditionTest, testing::ValuesIn(kAdditions),
                         [](const auto& parameters) { return parameters.param.pszName; });

INSTANTIATE_TEST_SUITE_P(All, GrowthTest, testing::ValuesIn(kCases),
                         [](const auto& parameters) { return parameters.param.pszName; });

}  // namespace
