// SPDX-License-Identifier: Apache-2.0
#include "annotation/EventTagMgr.h"

#include <algorithm>

#include "VcmAssert.h"

namespace {

constexpr const char* kSource = "WaveFileLib/EventTagMgr";

unsigned int CommandIndex(unsigned short wMain, unsigned short wSub) {
  return static_cast<unsigned int>(wMain) << 16 | wSub;
}

C_EventTag& TagAt(const C_EventTagMgr::EventList& list, int nIndex, const char* pszFunction) {
  C_EventTag* pEventTag = list.GetAt(nIndex);
  VCM_ASSERT(pEventTag != nullptr, pszFunction, kSource, __LINE__, "pEventTag != NULL");
  return *pEventTag;
}

auto AtTime(unsigned int dwTime) {
  return [dwTime](C_EventTag& tag) { return tag.GetTime() == dwTime; };
}

auto AtSample(unsigned int dwSamplePos) {
  return [dwSamplePos](C_EventTag& tag) { return tag.GetSamplePos() == dwSamplePos; };
}

auto WithCommand(unsigned short wMain, unsigned short wSub) {
  return [wMain, wSub](C_EventTag& tag) {
    return tag.GetMainCommandIndex() == wMain && tag.GetSubCommandIndex() == wSub;
  };
}

}  // namespace

// What an insertion sorts by, and the names and lines by which support tools know its assertions.
struct C_EventTagMgr::S_Ordering {
  unsigned int (C_EventTag::*pfnKey)();
  const char* pszFunction;
  int nLastTagLine;
  int nSearchLine;

  unsigned int Key(C_EventTag* pEventInList, int nLine) const {
    VCM_ASSERT(pEventInList != nullptr, pszFunction, kSource, nLine, "NULL != pEventInList");
    return (pEventInList->*pfnKey)();
  }
};

C_EventTagMgr::~C_EventTagMgr() { C_EventTagMgr::RemoveAllEvents(); }

I_EventTag* C_EventTagMgr::AddEvent(unsigned short wMain, unsigned short wSub, unsigned int dwTime,
                                    const char* pszDescription, unsigned int dwData) {
  static constexpr S_Ordering kByTime{&C_EventTag::GetTime, "AddEvent", 60, 77};
  return Insert(std::make_unique<C_EventTag>(CommandIndex(wMain, wSub), dwTime, pszDescription,
                                             dwData, m_dwSampleRate, EVENT_POS_TIME),
                kByTime);
}

void C_EventTagMgr::RemoveAllEvents() {
  for (int i = 0; i < m_events.GetCount(); ++i) delete m_events.GetAt(i);
  m_events.RemoveAll();
}

I_CLArray<I_EventTag*>* C_EventTagMgr::GetEventsByTime(unsigned int dwTime) {
  return Collect(AtTime(dwTime), "GetEventsByTime");
}

I_CLArray<I_EventTag*>* C_EventTagMgr::GetEventsByCommand(unsigned short wMain,
                                                          unsigned short wSub) {
  return Collect(WithCommand(wMain, wSub), "GetEventsByCommand");
}

// Kept: tags are added by their time, so moments set in samples lose everything below a
// millisecond. Existing files hold moments rounded this way. Pinned by
// AddEvents_GoesThroughTheTimeAndLosesSamples.
bool C_EventTagMgr::AddEvents(I_CLArray<I_EventTag*>* pList) {
  std::vector<I_EventTag*> tags;
  tags.reserve(static_cast<std::size_t>(pList->GetSize()));
  for (int i = 0; i < pList->GetSize(); ++i) tags.push_back(pList->GetItemByIndex(i));
  for (I_EventTag* pEventTag : tags) {
    VCM_ASSERT(pEventTag != nullptr, "AddEvents", kSource, __LINE__, "pEventTag != NULL");
    if (AddEvent(pEventTag->GetMainCommandIndex(), pEventTag->GetSubCommandIndex(),
                 pEventTag->GetTime(), pEventTag->GetDescription(),
                 pEventTag->GetData()) == nullptr) {
      return false;
    }
  }
  return true;
}

I_EventTag* C_EventTagMgr::AddEventBySamplePos(unsigned short wMain, unsigned short wSub,
                                               unsigned int dwSamplePos, const char* pszDescription,
                                               unsigned int dwData) {
  static constexpr S_Ordering kBySample{&C_EventTag::GetSamplePos, "AddEventBySamplePos", 155, 173};
  VCM_ASSERT(m_dwSampleRate > 0, "AddEventBySamplePos", kSource, 137, "m_dwSampleRate > 0");
  return Insert(std::make_unique<C_EventTag>(CommandIndex(wMain, wSub), dwSamplePos, pszDescription,
                                             dwData, m_dwSampleRate, EVENT_POS_SAMPLE),
                kBySample);
}

I_CLArray<I_EventTag*>* C_EventTagMgr::GetEventsBySamplePos(unsigned int dwSamplePos) {
  return Collect(AtSample(dwSamplePos), "GetEventsBySamplePos");
}

// Kept: the list is not sorted again, although a new rate may change the order of tags set as times
// and tags set in samples. Callers hold indexes into the list. Pinned by
// SetSampleRate_DoesNotSortAgain.
void C_EventTagMgr::SetSampleRate(unsigned int dwSampleRate) {
  if (dwSampleRate == m_dwSampleRate) return;
  m_dwSampleRate = dwSampleRate;
  for (int i = 0; i < m_events.GetCount(); ++i) {
    C_EventTag* pEventTag = m_events.GetAt(i);
    VCM_ASSERT(pEventTag != nullptr, "SetSampleRate", kSource, 476, "pEventTag != NULL");
    pEventTag->SetSampleRate(dwSampleRate);
  }
}

// Kept: taking a tag out of the list does not delete it, here and in the operations below. Callers
// move tags between managers this way. Pinned by RemoveEvent_LeavesTheTagAlive.
bool C_EventTagMgr::RemoveEvent(int nIndex) {
  if (nIndex < 0 || nIndex >= m_events.GetCount()) return false;
  m_events.RemoveAt(nIndex, 1);
  return true;
}

void C_EventTagMgr::RemoveEventsByTime(unsigned int dwTime) {
  TakeOutAll(AtTime(dwTime), "RemoveEventsByTime");
}

void C_EventTagMgr::RemoveEventsBySamplePos(unsigned int dwSamplePos) {
  TakeOutAll(AtSample(dwSamplePos), "RemoveEventsBySamplePos");
}

void C_EventTagMgr::RemoveEventsByCommand(unsigned short wMain, unsigned short wSub) {
  TakeOutAll(WithCommand(wMain, wSub), "RemoveEventsByCommand");
}

bool C_EventTagMgr::RemoveEventByTime(unsigned int dwTime, int nOccurrence) {
  return TakeOutOne(AtTime(dwTime), nOccurrence, "RemoveEventByTime");
}

bool C_EventTagMgr::RemoveEventBySamplePos(unsigned int dwSamplePos, int nOccurrence) {
  return TakeOutOne(AtSample(dwSamplePos), nOccurrence, "RemoveEventBySamplePos");
}

bool C_EventTagMgr::RemoveEventByCommand(unsigned short wMain, unsigned short wSub,
                                         int nOccurrence) {
  return TakeOutOne(WithCommand(wMain, wSub), nOccurrence, "RemoveEventByCommand");
}

I_EventTag* C_EventTagMgr::Insert(std::unique_ptr<C_EventTag> tag, const S_Ordering& ordering) {
  const int nPosition = InsertPosition((tag.get()->*ordering.pfnKey)(), ordering);
  m_events.InsertAt(nPosition, tag.get(), 1);
  return tag.release();
}

// Returns the position after the tags of equal key that a binary search lands on. In a sorted list
// this is after all of them. In a list that a new sample rate left unsorted, the result depends on
// which tags the search looks at, so the search must not change.
int C_EventTagMgr::InsertPosition(unsigned int dwKey, const S_Ordering& ordering) const {
  const int nCount = m_events.GetCount();
  if (nCount == 0) return 0;
  int nHigh = nCount - 1;
  if (ordering.Key(m_events.GetAt(nHigh), ordering.nLastTagLine) <= dwKey) return nCount;
  const auto KeyAt = [&](int nIndex) {
    return ordering.Key(m_events.GetAt(nIndex), ordering.nSearchLine);
  };
  int nLow = 0;
  while (nLow != nHigh) {
    const int nMiddle = nLow + (nHigh - nLow) / 2;
    const unsigned int dwMiddleKey = KeyAt(nMiddle);
    if (dwKey < dwMiddleKey) {
      nHigh = nMiddle;
    } else if (dwKey > dwMiddleKey) {
      nLow = nMiddle + 1;  // at most nHigh, because nMiddle < nHigh
    } else {
      nLow = nMiddle;
      break;
    }
  }
  while (nLow != nHigh && KeyAt(nLow) == dwKey) ++nLow;
  return nLow;
}

void C_EventTagMgr::AddEventsBySamplePos(std::span<const S_SampleEvent> events) {
  if (m_dwSampleRate == 0 || !IsInOrderOfSamples()) {
    for (const auto& [dwSamplePos, wMain, wSub, dwData] : events) {
      AddEventBySamplePos(wMain, wSub, dwSamplePos, "", dwData);
    }
    return;
  }
  std::vector<std::unique_ptr<C_EventTag>> tags;
  tags.reserve(events.size());
  for (const auto& [dwSamplePos, wMain, wSub, dwData] : events) {
    tags.push_back(std::make_unique<C_EventTag>(CommandIndex(wMain, wSub), dwSamplePos, "", dwData,
                                                m_dwSampleRate, EVENT_POS_SAMPLE));
  }
  std::stable_sort(tags.begin(), tags.end(), [](const auto& a, const auto& b) {
    return a->GetSamplePos() < b->GetSamplePos();
  });
  MergeBySamplePos(std::move(tags));
}

// A list that contains null does not count as in order: the tags are then added one by one, which
// treats the null as it always did.
bool C_EventTagMgr::IsInOrderOfSamples() const {
  unsigned int dwBefore = 0;
  for (int i = 0; i < m_events.GetCount(); ++i) {
    C_EventTag* pEventTag = m_events.GetAt(i);
    if (pEventTag == nullptr || pEventTag->GetSamplePos() < dwBefore) return false;
    dwBefore = pEventTag->GetSamplePos();
  }
  return true;
}

// Merges sorted tags into the sorted list from its end. Each tag goes after the tags with the same
// moment.
void C_EventTagMgr::MergeBySamplePos(std::vector<std::unique_ptr<C_EventTag>> tags) {
  int nListed = m_events.GetCount();
  int nTarget = nListed + static_cast<int>(tags.size());
  m_events.InsertAt(nListed, nullptr, static_cast<int>(tags.size()));
  while (!tags.empty()) {
    const unsigned int dwNew = tags.back()->GetSamplePos();
    for (; nListed > 0 && m_events.GetAt(nListed - 1)->GetSamplePos() > dwNew; --nListed) {
      m_events.SetAt(--nTarget, m_events.GetAt(nListed - 1));
    }
    m_events.SetAt(--nTarget, tags.back().release());
    tags.pop_back();
  }
}

template <typename Match>
I_CLArray<I_EventTag*>* C_EventTagMgr::Collect(Match match, const char* pszFunction) {
  m_found.RemoveAll();
  for (int i = 0; i < m_events.GetCount(); ++i) {
    C_EventTag& tag = TagAt(m_events, i, pszFunction);
    if (match(tag)) m_found.Add(&tag);
  }
  return &m_found;
}

template <typename Match>
void C_EventTagMgr::TakeOutAll(Match match, const char* pszFunction) {
  for (int i = m_events.GetCount() - 1; i >= 0; --i) {
    if (match(TagAt(m_events, i, pszFunction))) m_events.RemoveAt(i, 1);
  }
}

template <typename Match>
bool C_EventTagMgr::TakeOutOne(Match match, int nOccurrence, const char* pszFunction) {
  int nMatches = 0;
  for (int i = 0; i < m_events.GetCount(); ++i) {
    if (!match(TagAt(m_events, i, pszFunction))) continue;
    if (nMatches == nOccurrence) return RemoveEvent(i);
    ++nMatches;
  }
  return false;
}
