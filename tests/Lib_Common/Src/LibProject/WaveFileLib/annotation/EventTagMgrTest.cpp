// SPDX-License-Identifier: Apache-2.0
#include "annotation/EventTagMgr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "VTable.h"

namespace {

using Tags = I_CLArray<I_EventTag*>;

std::vector<unsigned int> TimesIn(Tags* pList) {
  std::vector<unsigned int> times;
  for (int i = 0; i < pList->GetSize(); ++i) times.push_back(pList->GetItemByIndex(i)->GetTime());
  return times;
}

// The sub indexes, by which the tests distinguish the tags.
std::vector<int> NamesIn(Tags* pList) {
  std::vector<int> names;
  for (int i = 0; i < pList->GetSize(); ++i) {
    names.push_back(pList->GetItemByIndex(i)->GetSubCommandIndex());
  }
  return names;
}

class EventTagMgr : public ::testing::Test {
 protected:
  I_EventTag* AtTime(unsigned int dwTime, unsigned short wName) {
    return m_mgr.AddEvent(1, wName, dwTime, "", 0);
  }
  I_EventTag* AtSample(unsigned int dwSamplePos, unsigned short wName) {
    return m_mgr.AddEventBySamplePos(1, wName, dwSamplePos, "", 0);
  }
  [[nodiscard]] std::vector<int> Names() { return NamesIn(m_mgr.GetEventList()); }
  [[nodiscard]] std::vector<unsigned int> Times() { return TimesIn(m_mgr.GetEventList()); }
  void AddNull() { static_cast<C_EventTagMgr::EventList*>(m_mgr.GetEventList())->Add(nullptr); }
  // Takes tags out of the list and keeps them until the end of the test.
  void Keep(I_EventTag* pTag) { m_kept.emplace_back(pTag); }

  C_EventTagMgr m_mgr;
  std::vector<std::unique_ptr<I_EventTag>> m_kept;
};

// Refuses every add from the second on.
class C_OneEventMgr : public C_EventTagMgr {
 public:
  I_EventTag* AddEvent(unsigned short wMain, unsigned short wSub, unsigned int dwTime,
                       const char* pszDescription, unsigned int dwData) override {
    if (GetEventList()->GetSize() > 0) return nullptr;
    return C_EventTagMgr::AddEvent(wMain, wSub, dwTime, pszDescription, dwData);
  }
};

}  // namespace

TEST_F(EventTagMgr, NewManager_IsEmptyAndHasNoRate) {
  EXPECT_EQ(m_mgr.GetEventList()->GetSize(), 0);
  EXPECT_EQ(m_mgr.GetSampleRate(), 0u);
}

TEST_F(EventTagMgr, AddEvent_MakesATagOfItsArguments) {
  m_mgr.SetSampleRate(8000);
  I_EventTag* pTag = m_mgr.AddEvent(3, 7, 333, "text", 42);
  EXPECT_EQ(m_mgr.GetEventList()->GetItemByIndex(0), pTag);
  EXPECT_EQ(pTag->GetMainCommandIndex(), 3);
  EXPECT_EQ(pTag->GetSubCommandIndex(), 7);
  EXPECT_EQ(pTag->GetTime(), 333u);
  EXPECT_EQ(pTag->GetSamplePos(), 2664u);
  EXPECT_STREQ(pTag->GetDescription(), "text");
  EXPECT_EQ(pTag->GetData(), 42u);
}

TEST_F(EventTagMgr, AddEvent_KeepsTheListInOrderOfTime) {
  AtTime(10, 1);
  AtTime(30, 2);
  AtTime(20, 3);
  EXPECT_EQ(Times(), (std::vector{10u, 20u, 30u}));
  AtTime(20, 4);
  EXPECT_EQ(Names(), (std::vector{1, 3, 4, 2}));
  AtTime(30, 5);
  EXPECT_EQ(Names(), (std::vector{1, 3, 4, 2, 5}));
  AtTime(0, 6);
  EXPECT_EQ(Names(), (std::vector{6, 1, 3, 4, 2, 5}));
}

TEST_F(EventTagMgr, AddEvent_PutsEqualTimesAfterEachOther_ForEveryArrangement) {
  std::mt19937 random(7);
  for (int nRound = 0; nRound < 200; ++nRound) {
    C_EventTagMgr mgr;
    std::vector<std::pair<unsigned int, int>> expected;
    for (unsigned short wName = 0; wName < 30; ++wName) {
      const auto dwTime = static_cast<unsigned int>(random() % 6);
      mgr.AddEvent(0, wName, dwTime, "", 0);
      const auto behind = std::upper_bound(
          expected.begin(), expected.end(), dwTime,
          [](unsigned int dwKey, const auto& entry) { return dwKey < entry.first; });
      expected.insert(behind, {dwTime, wName});
    }
    std::vector<int> names;
    for (const auto& entry : expected) names.push_back(entry.second);
    ASSERT_EQ(NamesIn(mgr.GetEventList()), names) << nRound;
  }
}

TEST_F(EventTagMgr, AddEvent_NeedsNoRateAmongTimes) {
  AtTime(5, 1);
  AtTime(4, 2);
  EXPECT_EQ(Names(), (std::vector{2, 1}));
}

TEST_F(EventTagMgr, AddEvent_AmongSamplesWithoutRate_StopsTheProgram) {
  m_mgr.SetSampleRate(8000);
  AtSample(5, 1);
  m_mgr.SetSampleRate(0);
  EXPECT_DEATH(AtTime(4, 2), "GetTime: WaveFileLib/EventTag:42: .*m_dwSampleRate > 0");
}

TEST_F(EventTagMgr, AddEventBySamplePos_KeepsTheListInOrderOfSamples) {
  m_mgr.SetSampleRate(8000);
  AtSample(10, 1);
  AtSample(30, 2);
  I_EventTag* pTag = AtSample(20, 3);
  AtSample(20, 4);
  EXPECT_EQ(pTag->GetSamplePos(), 20u);
  EXPECT_EQ(Names(), (std::vector{1, 3, 4, 2}));
}

TEST_F(EventTagMgr, AddEventBySamplePos_TakesTheManagersRate) {
  m_mgr.SetSampleRate(44100);
  EXPECT_EQ(AtSample(22050, 1)->GetTime(), 500u);
}

TEST_F(EventTagMgr, AddEventBySamplePos_WithoutRate_StopsTheProgram) {
  EXPECT_DEATH(AtSample(1, 1),
               "^AddEventBySamplePos: WaveFileLib/EventTagMgr:137: assertion failed: "
               "m_dwSampleRate > 0\n$");
}

TEST_F(EventTagMgr, AddEventsBySamplePos_IsTheSameAsAddingOneByOne) {
  std::mt19937 random(5);
  const auto Below = [&](unsigned int dwLimit) {
    return static_cast<unsigned int>(random() % dwLimit);
  };
  for (int nRound = 0; nRound < 300; ++nRound) {
    C_EventTagMgr together;
    C_EventTagMgr oneByOne;
    const auto Both = [&](auto Do) {
      Do(together);
      Do(oneByOne);
    };
    Both([](C_EventTagMgr& mgr) { mgr.SetSampleRate(1000); });
    for (unsigned int nTags = Below(8), i = 0; i < nTags; ++i) {
      const auto wName = static_cast<unsigned short>(100 + i);
      const unsigned int dwPos = Below(12);
      const bool bTime = Below(3) == 0;
      Both([&](C_EventTagMgr& mgr) {
        if (bTime) {
          mgr.AddEvent(1, wName, dwPos, "", 0);
        } else {
          mgr.AddEventBySamplePos(1, wName, dwPos, "", 0);
        }
      });
    }
    // A different rate leaves some of the lists unsorted.
    const unsigned int dwRate = 500 + Below(2) * 500;
    Both([&](C_EventTagMgr& mgr) { mgr.SetSampleRate(dwRate); });
    std::vector<C_EventTagMgr::S_SampleEvent> events(Below(12));
    for (unsigned short wSub = 0; auto& event : events) event = {Below(12), 2, wSub++};
    together.AddEventsBySamplePos(events);
    for (const auto& event : events) {
      oneByOne.AddEventBySamplePos(event.wMain, event.wSub, event.dwSamplePos, "", 0);
    }
    ASSERT_EQ(NamesIn(together.GetEventList()), NamesIn(oneByOne.GetEventList())) << nRound;
    ASSERT_EQ(TimesIn(together.GetEventList()), TimesIn(oneByOne.GetEventList())) << nRound;
  }
}

TEST_F(EventTagMgr, AddEventsBySamplePos_MakesTagsOfTheManagersRate) {
  m_mgr.SetSampleRate(8000);
  const C_EventTagMgr::S_SampleEvent events[] = {{8000, 3, 7}, {4000, 4, 8}};
  m_mgr.AddEventsBySamplePos(events);
  EXPECT_EQ(Names(), (std::vector{8, 7}));
  EXPECT_EQ(Times(), (std::vector{500u, 1000u}));
  I_EventTag* pTag = m_mgr.GetEventList()->GetItemByIndex(1);
  EXPECT_EQ(pTag->GetMainCommandIndex(), 3);
  EXPECT_EQ(pTag->GetSamplePos(), 8000u);
  EXPECT_STREQ(pTag->GetDescription(), "");
  EXPECT_EQ(pTag->GetData(), 0u);
  m_mgr.SetSampleRate(16000);
  EXPECT_EQ(pTag->GetSamplePos(), 8000u);
}

TEST_F(EventTagMgr, AddEventsBySamplePos_WithoutRateOrAmongNulls_StopsTheProgram) {
  const C_EventTagMgr::S_SampleEvent events[] = {{1, 1, 1}};
  m_mgr.AddEventsBySamplePos({});
  EXPECT_DEATH(m_mgr.AddEventsBySamplePos(events),
               "^AddEventBySamplePos: WaveFileLib/EventTagMgr:137: assertion failed: "
               "m_dwSampleRate > 0\n$");
  m_mgr.SetSampleRate(8000);
  AddNull();
  EXPECT_DEATH(m_mgr.AddEventsBySamplePos(events),
               "^AddEventBySamplePos: WaveFileLib/EventTagMgr:155: assertion failed: "
               "NULL != pEventInList\n$");
}

TEST_F(EventTagMgr, HundredsOfThousandsOfEventsAtOneMoment_AreAddedBeforeALaterOneInNoTime) {
  constexpr std::size_t kEvents = 300000;
  m_mgr.SetSampleRate(8000);
  AtSample(9, 1);
  std::vector<C_EventTagMgr::S_SampleEvent> events(kEvents, {7, 2, 2});
  events.back().wSub = 3;
  m_mgr.AddEventsBySamplePos(events);
  const auto names = Names();
  ASSERT_EQ(names.size(), kEvents + 1);
  EXPECT_EQ(names[0], 2);
  EXPECT_EQ(names[kEvents - 1], 3);
  EXPECT_EQ(names[kEvents], 1);
}

TEST_F(EventTagMgr, MixedUnits_AreOrderedThroughTheRate) {
  m_mgr.SetSampleRate(8000);
  AtSample(8000, 1);
  AtTime(500, 2);
  AtSample(6000, 3);
  EXPECT_EQ(Times(), (std::vector{500u, 750u, 1000u}));
}

TEST_F(EventTagMgr, NullAtTheEnd_StopsAnAdd) {
  m_mgr.SetSampleRate(8000);
  AtTime(5, 1);
  AddNull();
  EXPECT_DEATH(AtTime(4, 2),
               "^AddEvent: WaveFileLib/EventTagMgr:60: assertion failed: "
               "NULL != pEventInList\n$");
  EXPECT_DEATH(AtSample(4, 2),
               "^AddEventBySamplePos: WaveFileLib/EventTagMgr:155: assertion "
               "failed: NULL != pEventInList\n$");
  m_mgr.RemoveEvent(1);
}

TEST_F(EventTagMgr, NullInTheMiddle_StopsTheSearch) {
  m_mgr.SetSampleRate(8000);
  AtTime(5, 1);
  AddNull();
  static_cast<C_EventTagMgr::EventList*>(m_mgr.GetEventList())
      ->Add(new C_EventTag(0, 9, "", 0, 8000, EVENT_POS_TIME));
  EXPECT_DEATH(AtTime(4, 2),
               "^AddEvent: WaveFileLib/EventTagMgr:77: assertion failed: "
               "NULL != pEventInList\n$");
  EXPECT_DEATH(AtSample(4, 2),
               "^AddEventBySamplePos: WaveFileLib/EventTagMgr:173: assertion "
               "failed: NULL != pEventInList\n$");
  m_mgr.RemoveEvent(1);
}

TEST_F(EventTagMgr, NullEntry_StopsANewRate) {
  AddNull();
  EXPECT_DEATH(m_mgr.SetSampleRate(8000),
               "^SetSampleRate: WaveFileLib/EventTagMgr:476: assertion failed: "
               "pEventTag != NULL\n$");
  m_mgr.SetSampleRate(0);
}

TEST_F(EventTagMgr, NullEntry_StopsEveryWalkThatMeetsIt) {
  AddNull();
  const auto Stops = [](const std::string& strFunction) {
    return "^" + strFunction +
           ": WaveFileLib/EventTagMgr:[0-9]+: assertion failed: pEventTag != NULL\n$";
  };
  EXPECT_DEATH(m_mgr.GetEventsByTime(1), Stops("GetEventsByTime"));
  EXPECT_DEATH(m_mgr.GetEventsByCommand(1, 1), Stops("GetEventsByCommand"));
  EXPECT_DEATH(m_mgr.RemoveEventsBySamplePos(1), Stops("RemoveEventsBySamplePos"));
  EXPECT_DEATH(m_mgr.RemoveEventByTime(1, 0), Stops("RemoveEventByTime"));
  EXPECT_DEATH(m_mgr.AddEvents(m_mgr.GetEventList()), Stops("AddEvents"));
}

TEST_F(EventTagMgr, SetSampleRate_ReachesEveryTag) {
  m_mgr.SetSampleRate(8000);
  I_EventTag* pSample = AtSample(8000, 1);
  I_EventTag* pTime = AtTime(2000, 2);
  m_mgr.SetSampleRate(8000);
  EXPECT_EQ(pSample->GetTime(), 1000u);
  m_mgr.SetSampleRate(16000);
  EXPECT_EQ(m_mgr.GetSampleRate(), 16000u);
  EXPECT_EQ(pSample->GetTime(), 500u);
  EXPECT_EQ(pSample->GetSamplePos(), 8000u);
  EXPECT_EQ(pTime->GetTime(), 2000u);
  EXPECT_EQ(pTime->GetSamplePos(), 32000u);
}

TEST_F(EventTagMgr, SetSampleRate_ToTheSameRate_TouchesNoTag) {
  m_mgr.SetSampleRate(8000);
  auto* pTag = static_cast<C_EventTag*>(AtSample(8000, 1));
  pTag->SetSampleRate(4000);
  m_mgr.SetSampleRate(8000);
  EXPECT_EQ(pTag->GetTime(), 2000u);
}

TEST_F(EventTagMgr, SetSampleRate_DoesNotSortAgain) {
  m_mgr.SetSampleRate(8000);
  AtTime(500, 1);
  AtSample(8000, 2);
  m_mgr.SetSampleRate(80000);
  EXPECT_EQ(Times(), (std::vector{500u, 100u}));
}

TEST_F(EventTagMgr, AddEvent_IntoAListThatIsNotSorted_FollowsTheSearch) {
  m_mgr.SetSampleRate(8000);
  AtTime(500, 1);
  AtSample(8000, 2);
  AtTime(2000, 3);
  AtTime(3000, 4);
  m_mgr.SetSampleRate(80000);  // times are now 500, 100, 2000, 3000
  AtTime(300, 5);              // compared with 100, then with 2000
  EXPECT_EQ(Names(), (std::vector{1, 2, 5, 3, 4}));
  AtTime(50, 6);  // compared with 300, 100, 500
  EXPECT_EQ(Names(), (std::vector{6, 1, 2, 5, 3, 4}));
}

TEST_F(EventTagMgr, AddEvent_WhereTheSearchMeetsAnEqualOne_GoesAfterTheEqualOnesThere) {
  m_mgr.SetSampleRate(1000);
  AtSample(0, 1);
  AtSample(1, 2);
  AtSample(50, 3);
  AtTime(60, 4);
  AtSample(90, 5);
  m_mgr.SetSampleRate(500);  // samples are now 0, 1, 50, 30, 90
  AtSample(50, 6);
  EXPECT_EQ(Names(), (std::vector{1, 2, 3, 6, 4, 5}));
}

TEST_F(EventTagMgr, Queries_FindInListOrder) {
  m_mgr.SetSampleRate(1000);
  AtTime(20, 1);
  AtTime(10, 2);
  AtSample(20, 3);
  m_mgr.AddEvent(9, 3, 20, "", 0);
  EXPECT_EQ(NamesIn(m_mgr.GetEventsByTime(20)), (std::vector{1, 3, 3}));
  EXPECT_EQ(NamesIn(m_mgr.GetEventsBySamplePos(10)), (std::vector{2}));
  EXPECT_EQ(m_mgr.GetEventsByCommand(9, 3)->GetSize(), 1);
  EXPECT_EQ(m_mgr.GetEventsByCommand(1, 3)->GetSize(), 1);
  EXPECT_EQ(m_mgr.GetEventsByCommand(9, 1)->GetSize(), 0);
  EXPECT_EQ(m_mgr.GetEventsByTime(21)->GetSize(), 0);
}

TEST_F(EventTagMgr, Queries_ShareOneResultListThatEachEmptiesFirst) {
  m_mgr.SetSampleRate(1000);
  AtTime(20, 1);
  AtTime(10, 2);
  Tags* pFound = m_mgr.GetEventsByTime(20);
  EXPECT_EQ(NamesIn(pFound), (std::vector{1}));
  EXPECT_EQ(m_mgr.GetEventsByCommand(1, 2), pFound);
  EXPECT_EQ(NamesIn(pFound), (std::vector{2}));
  EXPECT_EQ(m_mgr.GetEventsBySamplePos(99), pFound);
  EXPECT_EQ(pFound->GetSize(), 0);
  EXPECT_NE(pFound, m_mgr.GetEventList());
  EXPECT_EQ(Names(), (std::vector{2, 1}));
}

TEST_F(EventTagMgr, GetEventList_IsTheListItself) {
  Tags* pList = m_mgr.GetEventList();
  AtTime(1, 1);
  EXPECT_EQ(pList->GetSize(), 1);
}

TEST_F(EventTagMgr, AddEvents_CopiesTheTags) {
  C_EventTagMgr source;
  source.AddEvent(3, 7, 20, "text", 42);
  source.AddEvent(4, 8, 10, "", 0);
  EXPECT_TRUE(m_mgr.AddEvents(source.GetEventList()));
  EXPECT_EQ(Times(), (std::vector{10u, 20u}));
  I_EventTag* pCopy = m_mgr.GetEventList()->GetItemByIndex(1);
  EXPECT_NE(pCopy, source.GetEventList()->GetItemByIndex(1));
  EXPECT_EQ(pCopy->GetMainCommandIndex(), 3);
  EXPECT_EQ(pCopy->GetSubCommandIndex(), 7);
  EXPECT_STREQ(pCopy->GetDescription(), "text");
  EXPECT_EQ(pCopy->GetData(), 42u);
  EXPECT_EQ(source.GetEventList()->GetSize(), 2);
}

TEST_F(EventTagMgr, AddEvents_GoesThroughTheTimeAndLosesSamples) {
  C_EventTagMgr source;
  source.SetSampleRate(44100);
  source.AddEventBySamplePos(1, 1, 1, "", 0);
  m_mgr.SetSampleRate(44100);
  EXPECT_TRUE(m_mgr.AddEvents(source.GetEventList()));
  EXPECT_EQ(m_mgr.GetEventList()->GetItemByIndex(0)->GetTime(), 0u);
  EXPECT_EQ(m_mgr.GetEventList()->GetItemByIndex(0)->GetSamplePos(), 0u);
}

TEST_F(EventTagMgr, AddEvents_StopsAtTheFirstFailure) {
  AtTime(10, 1);
  AtTime(20, 2);
  C_OneEventMgr target;
  EXPECT_FALSE(target.AddEvents(m_mgr.GetEventList()));
  EXPECT_EQ(NamesIn(target.GetEventList()), (std::vector{1}));
  C_EventTagMgr none;
  EXPECT_TRUE(target.AddEvents(none.GetEventList()));
}

TEST_F(EventTagMgr, AddEvents_OfTheOwnList_DoublesItAndEnds) {
  AtTime(10, 1);
  AtTime(20, 2);
  EXPECT_TRUE(m_mgr.AddEvents(m_mgr.GetEventList()));
  EXPECT_EQ(Names(), (std::vector{1, 1, 2, 2}));
}

TEST_F(EventTagMgr, RemoveEvent_LeavesTheTagAlive) {
  AtTime(10, 1);
  Keep(AtTime(20, 2));
  EXPECT_TRUE(m_mgr.RemoveEvent(1));
  EXPECT_EQ(Names(), (std::vector{1}));
  EXPECT_EQ(m_kept[0]->GetTime(), 20u);
}

TEST_F(EventTagMgr, RemoveEvent_OutsideTheList_IsFalse) {
  EXPECT_FALSE(m_mgr.RemoveEvent(0));
  AtTime(10, 1);
  EXPECT_FALSE(m_mgr.RemoveEvent(m_mgr.GetEventList()->GetSize()));
  EXPECT_FALSE(m_mgr.RemoveEvent(-1));
  EXPECT_EQ(Names(), (std::vector{1}));
}

TEST_F(EventTagMgr, RemoveEventsBy_TakesOutEveryMatchAlive) {
  m_mgr.SetSampleRate(1000);
  Keep(AtTime(10, 1));
  Keep(AtSample(10, 2));
  AtTime(20, 3);
  Keep(AtTime(10, 4));
  m_mgr.RemoveEventsByTime(10);
  EXPECT_EQ(Names(), (std::vector{3}));
  Keep(AtTime(30, 5));
  Keep(AtSample(30, 6));
  m_mgr.RemoveEventsBySamplePos(30);
  EXPECT_EQ(Names(), (std::vector{3}));
  Keep(AtTime(40, 7));
  Keep(AtTime(50, 7));
  m_mgr.RemoveEventsByCommand(1, 7);
  m_mgr.RemoveEventsByCommand(2, 3);
  m_mgr.RemoveEventsByTime(99);
  EXPECT_EQ(Names(), (std::vector{3}));
  for (const auto& tag : m_kept) EXPECT_EQ(tag->GetMainCommandIndex(), 1);
}

TEST_F(EventTagMgr, RemoveEventBySamplePos_TakesOutTheOccurrenceAskedFor) {
  m_mgr.SetSampleRate(1000);
  AtSample(10, 1);
  Keep(AtSample(10, 2));
  AtSample(10, 3);
  AtSample(5, 4);
  EXPECT_FALSE(m_mgr.RemoveEventBySamplePos(10, 3));
  EXPECT_FALSE(m_mgr.RemoveEventBySamplePos(11, 0));
  EXPECT_FALSE(m_mgr.RemoveEventBySamplePos(10, -1));
  EXPECT_FALSE(m_mgr.RemoveEventBySamplePos(10, std::numeric_limits<int>::min()));
  EXPECT_TRUE(m_mgr.RemoveEventBySamplePos(10, 1));
  EXPECT_EQ(Names(), (std::vector{4, 1, 3}));
  EXPECT_EQ(m_kept[0]->GetSamplePos(), 10u);
}

TEST_F(EventTagMgr, RemoveEventByTimeAndByCommand_CountLikewise) {
  Keep(AtTime(10, 1));
  AtTime(10, 2);
  AtTime(20, 2);
  Keep(AtTime(30, 2));
  EXPECT_TRUE(m_mgr.RemoveEventByTime(10, 0));
  EXPECT_FALSE(m_mgr.RemoveEventByTime(10, 1));
  EXPECT_TRUE(m_mgr.RemoveEventByCommand(1, 2, 2));
  EXPECT_FALSE(m_mgr.RemoveEventByCommand(1, 2, 2));
  EXPECT_FALSE(m_mgr.RemoveEventByCommand(2, 2, 0));
  EXPECT_EQ(Times(), (std::vector{10u, 20u}));
}

namespace {

int g_nTagsDeleted = 0;

class C_CountedTag : public C_EventTag {
 public:
  C_CountedTag() : C_EventTag(0, 0, "", 0, 0, EVENT_POS_TIME) {}
  ~C_CountedTag() override { ++g_nTagsDeleted; }
};

void AddCounted(C_EventTagMgr& mgr, int nCount) {
  for (int i = 0; i < nCount; ++i) {
    static_cast<C_EventTagMgr::EventList*>(mgr.GetEventList())->Add(new C_CountedTag);
  }
}

}  // namespace

TEST_F(EventTagMgr, RemoveAllEvents_DeletesEveryTag) {
  g_nTagsDeleted = 0;
  AddCounted(m_mgr, 3);
  m_mgr.RemoveAllEvents();
  EXPECT_EQ(g_nTagsDeleted, 3);
  EXPECT_EQ(m_mgr.GetEventList()->GetSize(), 0);
  m_mgr.RemoveAllEvents();
  EXPECT_EQ(g_nTagsDeleted, 3);
}

TEST_F(EventTagMgr, Destructor_DeletesTheTagsInTheList) {
  g_nTagsDeleted = 0;
  {
    C_EventTagMgr mgr;
    AddCounted(mgr, 2);
    Keep(mgr.GetEventList()->GetItemByIndex(0));
    EXPECT_TRUE(mgr.RemoveEvent(0));
  }
  EXPECT_EQ(g_nTagsDeleted, 1);
}

TEST_F(EventTagMgr, Operations_StandInTheirSlots) {
  auto* pMgr = new C_EventTagMgr;
  I_EventTagMgr* pIMgr = pMgr;
  const auto Size = [&] { return pMgr->GetEventList()->GetSize(); };
  const auto AddSix = [&] {
    for (unsigned short i = 0; i < 6; ++i) Keep(pMgr->AddEvent(1, i, i / 2u, "", 0));
  };
  CallSlot<void>(pIMgr, 8, 1000u);
  EXPECT_EQ(CallSlot<unsigned int>(pIMgr, 9), 1000u);
  using Word = unsigned short;
  CallSlot<I_EventTag*, Word, Word, unsigned int, const char*, unsigned int>(pIMgr, 0, 1, 2, 30,
                                                                             "a", 5);
  EXPECT_EQ(Size(), 1);
  CallSlot<I_EventTag*, Word, Word, unsigned int, const char*, unsigned int>(pIMgr, 6, 1, 3, 40,
                                                                             "b", 6);
  EXPECT_EQ(Size(), 2);
  EXPECT_EQ(CallSlot<Tags*>(pIMgr, 2, 30u)->GetSize(), 1);
  EXPECT_EQ((CallSlot<Tags*, Word, Word>(pIMgr, 3, 1, 3)->GetSize()), 1);
  EXPECT_EQ(CallSlot<Tags*>(pIMgr, 4)->GetSize(), 2);
  EXPECT_TRUE(CallSlot<bool>(pIMgr, 5, m_mgr.GetEventList()));
  EXPECT_EQ(CallSlot<Tags*>(pIMgr, 7, 40u)->GetItemByIndex(0)->GetSubCommandIndex(), 3);
  CallSlot<void>(pIMgr, 1);
  EXPECT_EQ(Size(), 0);
  AddSix();
  EXPECT_TRUE(CallSlot<bool>(pIMgr, 10, 5));
  EXPECT_EQ(Size(), 5);
  CallSlot<void>(pIMgr, 11, 0u);
  EXPECT_EQ(Size(), 3);
  CallSlot<void>(pIMgr, 12, 1u);
  EXPECT_EQ(Size(), 1);
  CallSlot<void, Word, Word>(pIMgr, 13, 1, 4);
  EXPECT_EQ(Size(), 0);
  AddSix();
  EXPECT_TRUE(CallSlot<bool>(pIMgr, 14, 0u, 1));
  EXPECT_EQ(pMgr->GetEventsByTime(0)->GetItemByIndex(0)->GetSubCommandIndex(), 0);
  EXPECT_TRUE(CallSlot<bool>(pIMgr, 15, 1u, 1));
  EXPECT_TRUE((CallSlot<bool, Word, Word, int>(pIMgr, 16, 1, 4, 0)));
  EXPECT_EQ(NamesIn(pMgr->GetEventList()), (std::vector{0, 2, 5}));
  while (pMgr->RemoveEvent(0)) {
  }
  CallSlot<void>(pIMgr, 18);
}
