// SPDX-License-Identifier: Apache-2.0
//
// Whatever the manager knows of the order of its list, tags are put where a search that asks the
// tags themselves puts them, and all tags of a moment are found. Here callers change tags and
// lists, which the manager must notice.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "SampleValues.h"
#include "annotation/EventTagMgr.h"

namespace {

using Tags = std::vector<I_EventTag*>;

constexpr unsigned int kMoments = 12;  // few, so that many tags have equal ones
constexpr int kMostTags = 60;

unsigned int KeyOf(I_EventTag& tag, bool bSamples) {
  return bSamples ? tag.GetSamplePos() : tag.GetTime();
}

// The position at which a tag is inserted, in a list that need not be in order.
std::size_t Position(const Tags& tags, unsigned int dwKey, bool bSamples) {
  if (tags.empty() || KeyOf(*tags.back(), bSamples) <= dwKey) return tags.size();
  std::size_t nLow = 0;
  std::size_t nHigh = tags.size() - 1;
  while (nLow != nHigh) {
    const std::size_t nMiddle = (nLow + nHigh) / 2;
    const unsigned int dwMiddle = KeyOf(*tags[nMiddle], bSamples);
    if (dwKey < dwMiddle) {
      nHigh = nMiddle;
    } else if (dwKey > dwMiddle) {
      nLow = nMiddle + 1;
    } else {
      nLow = nMiddle;
      break;
    }
  }
  while (nLow != nHigh && KeyOf(*tags[nLow], bSamples) == dwKey) ++nLow;
  return nLow;
}

class EventTagOrderTest : public testing::TestWithParam<unsigned int> {
 protected:
  EventTagOrderTest() { m_mgr.SetSampleRate(1500); }
  ~EventTagOrderTest() override {
    for (I_EventTag* pTag : m_taken) delete pTag;
  }
  EventTagOrderTest(const EventTagOrderTest&) = delete;
  EventTagOrderTest& operator=(const EventTagOrderTest&) = delete;

  I_CLArray<I_EventTag*>& List() { return *m_mgr.GetEventList(); }
  C_EventTagMgr::EventList& OpenList() { return static_cast<C_EventTagMgr::EventList&>(List()); }
  static Tags TagsIn(I_CLArray<I_EventTag*>& list) {
    Tags tags;
    for (int i = 0; i < list.GetSize(); ++i) tags.push_back(list.GetItemByIndex(i));
    return tags;
  }
  unsigned int Moment() { return m_random() % kMoments; }

  void Add(bool bSamples) {
    if (List().GetSize() >= kMostTags) return;
    Tags expected = TagsIn(List());
    const unsigned int dwMoment = Moment();
    const std::size_t nPosition = Position(expected, dwMoment, bSamples);
    I_EventTag* pTag = bSamples ? m_mgr.AddEventBySamplePos(1, 2, dwMoment, "", 0)
                                : m_mgr.AddEvent(1, 2, dwMoment, "", 0);
    expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(nPosition), pTag);
    ASSERT_EQ(TagsIn(List()), expected);
  }
  void AddMany() {
    const std::vector<C_EventTagMgr::S_SampleEvent> events(3, {Moment(), 1, 2, 0});
    Tags expected = TagsIn(List());
    m_mgr.AddEventsBySamplePos(events);
    Tags found = TagsIn(List());
    std::erase_if(found, [&](I_EventTag* pTag) { return std::ranges::count(expected, pTag) == 0; });
    ASSERT_EQ(found, expected);
  }
  void Find(bool bSamples) {
    const unsigned int dwMoment = Moment();
    Tags expected = TagsIn(List());
    std::erase_if(expected, [&](I_EventTag* pTag) { return KeyOf(*pTag, bSamples) != dwMoment; });
    ASSERT_EQ(
        TagsIn(bSamples ? *m_mgr.GetEventsBySamplePos(dwMoment) : *m_mgr.GetEventsByTime(dwMoment)),
        expected);
  }
  void TakeOut(bool bSamples) {
    const unsigned int dwMoment = Moment();
    Tags expected = TagsIn(List());
    std::erase_if(expected, [&](I_EventTag* pTag) {
      const bool bOut = KeyOf(*pTag, bSamples) == dwMoment;
      if (bOut) m_taken.push_back(pTag);
      return bOut;
    });
    if (bSamples) m_mgr.RemoveEventsBySamplePos(dwMoment);
    if (!bSamples) m_mgr.RemoveEventsByTime(dwMoment);
    ASSERT_EQ(TagsIn(List()), expected);
  }
  void TakeOutOne(bool bSamples) {
    const unsigned int dwMoment = Moment();
    const int nOccurrence = static_cast<int>(m_random() % 3);
    Tags expected = TagsIn(List());
    int nMatches = 0;
    const auto found = std::ranges::find_if(expected, [&](I_EventTag* pTag) {
      return KeyOf(*pTag, bSamples) == dwMoment && nMatches++ == nOccurrence;
    });
    const bool bFound = found != expected.end();
    if (bFound) m_taken.push_back(*found);
    if (bFound) expected.erase(found);
    ASSERT_EQ(bSamples ? m_mgr.RemoveEventBySamplePos(dwMoment, nOccurrence)
                       : m_mgr.RemoveEventByTime(dwMoment, nOccurrence),
              bFound);
    ASSERT_EQ(TagsIn(List()), expected);
  }

  // What callers do without telling the manager.
  void ChangeTags() {
    I_EventTag* pTag = AnyTag();
    if (pTag == nullptr) return;
    switch (m_random() % 4) {
      case 0:
        return pTag->SetTime(Moment());
      case 1:
        return pTag->SetSamplePos(Moment());
      case 2:
        m_taken.push_back(pTag);
        return List().RemoveItemByIndex(m_nAny);
      default:
        return m_mgr.SetSampleRate(1000 + m_random() % 3 * 500);
    }
  }
  void ChangeList() {
    if (AnyTag() == nullptr) return;
    switch (m_random() % 3) {
      case 0:
        return Exchange(m_nAny, List().GetSize() - 1);
      case 1:
        return PutIn(m_nAny);
      default:
        return PutIn(List().GetSize());
    }
  }

  C_Random m_random{GetParam()};
  C_EventTagMgr m_mgr;
  Tags m_taken;

 private:
  I_EventTag* AnyTag() {
    const int nSize = List().GetSize();
    if (nSize == 0) return nullptr;
    m_nAny = static_cast<int>(m_random() % static_cast<unsigned int>(nSize));
    return List().GetItemByIndex(m_nAny);
  }
  void Exchange(int nOne, int nOther) {
    C_EventTag* pOne = OpenList().GetAt(nOne);
    OpenList().SetAt(nOne, OpenList().GetAt(nOther));
    OpenList().SetAt(nOther, pOne);
  }
  void PutIn(int nIndex) {
    if (m_taken.empty()) return;
    auto* const pTag = static_cast<C_EventTag*>(m_taken.back());
    m_taken.pop_back();
    if (nIndex == List().GetSize()) {
      OpenList().Add(pTag);
    } else {
      OpenList().InsertAt(nIndex, pTag, 1);
    }
  }

  int m_nAny = 0;
};

TEST_P(EventTagOrderTest, Operations_FollowTheTags_WhateverCallersChange) {
  for (int i = 0; i < 4000 && !HasFatalFailure(); ++i) {
    SCOPED_TRACE(i);
    const bool bSamples = m_random() % 4 != 0;
    const unsigned int dwKind = m_random() % 64;
    if (dwKind < 40) Add(bSamples);
    if (dwKind >= 40 && dwKind < 48) Find(bSamples);
    if (dwKind >= 48 && dwKind < 53) TakeOutOne(bSamples);
    if (dwKind >= 53 && dwKind < 57) TakeOut(bSamples);
    if (dwKind >= 57 && dwKind < 60) AddMany();
    if (dwKind >= 62 && i % 400 > 100) ChangeTags();
    if (dwKind >= 60 && i % 400 > 350) ChangeList();
    if (i % 400 == 399) m_mgr.RemoveAllEvents();
  }
}
INSTANTIATE_TEST_SUITE_P(All, EventTagOrderTest, testing::Range(1U, 9U));

// Sample 1 is before the first millisecond ends.
TEST(EventTagOrder, SampleEventsAmongTimes_AreFoundByTime) {
  C_EventTagMgr manager;
  manager.SetSampleRate(1500);
  manager.AddEvent(1, 2, 1, "", 0);
  const C_EventTagMgr::S_SampleEvent event{1, 1, 2, 0};
  manager.AddEventsBySamplePos({&event, 1});
  EXPECT_EQ(manager.GetEventsByTime(1)->GetSize(), 1);
  EXPECT_EQ(manager.GetEventsByTime(0)->GetSize(), 1);
}

}  // namespace
