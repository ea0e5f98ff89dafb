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
  E_EventPosUnit eUnit;
  const char* pszFunction;
  int nLastTagLine;
  int nSearchLine;

  unsigned int Key(C_EventTag* pEventInList, int nLine) const {
    VCM_ASSERT(pEventInList != nullptr, pszFunction, kSource, nLine, "NULL != pEventInList");
    return KeyOf(*pEventInList);
  }
  unsigned int KeyOf(C_EventTag& tag) const {
    return eUnit == EVENT_POS_TIME ? tag.GetTime() : tag.GetSamplePos();
  }

  static const S_Ordering kByTime;
  static const S_Ordering kBySample;
};

constexpr C_EventTagMgr::S_Ordering C_EventTagMgr::S_Ordering::kByTime{EVENT_POS_TIME, "AddEvent",
                                                                       60, 77};
constexpr C_EventTagMgr::S_Ordering C_EventTagMgr::S_Ordering::kBySample{
    EVENT_POS_SAMPLE, "AddEventBySamplePos", 155, 173};

C_EventTagMgr::~C_EventTagMgr() { C_EventTagMgr::RemoveAllEvents(); }

I_EventTag* C_EventTagMgr::AddEvent(unsigned short wMain, unsigned short wSub, unsigned int dwTime,
                                    const char* pszDescription, unsigned int dwData) {
  return Insert(std::make_unique<C_EventTag>(CommandIndex(wMain, wSub), dwTime, pszDescription,
                                             dwData, m_dwSampleRate, EVENT_POS_TIME),
                S_Ordering::kByTime);
}

void C_EventTagMgr::RemoveAllEvents() {
  for (int i = 0; i < m_events.GetCount(); ++i) delete m_events.GetAt(i);
  m_events.RemoveAll();
  m_nExchanges = EventList::Exchanges();
  m_orders = {};
}

I_CLArray<I_EventTag*>* C_EventTagMgr::GetEventsByTime(unsigned int dwTime) {
  return Collect(Where(dwTime, S_Ordering::kByTime), AtTime(dwTime), "GetEventsByTime");
}

I_CLArray<I_EventTag*>* C_EventTagMgr::GetEventsByCommand(unsigned short wMain,
                                                          unsigned short wSub) {
  return Collect(All(), WithCommand(wMain, wSub), "GetEventsByCommand");
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
  VCM_ASSERT(m_dwSampleRate > 0, "AddEventBySamplePos", kSource, 137, "m_dwSampleRate > 0");
  return Insert(std::make_unique<C_EventTag>(CommandIndex(wMain, wSub), dwSamplePos, pszDescription,
                                             dwData, m_dwSampleRate, EVENT_POS_SAMPLE),
                S_Ordering::kBySample);
}

I_CLArray<I_EventTag*>* C_EventTagMgr::GetEventsBySamplePos(unsigned int dwSamplePos) {
  return Collect(Where(dwSamplePos, S_Ordering::kBySample), AtSample(dwSamplePos),
                 "GetEventsBySamplePos");
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
  TakeOutAll(Where(dwTime, S_Ordering::kByTime), AtTime(dwTime), "RemoveEventsByTime");
}

void C_EventTagMgr::RemoveEventsBySamplePos(unsigned int dwSamplePos) {
  TakeOutAll(Where(dwSamplePos, S_Ordering::kBySample), AtSample(dwSamplePos),
             "RemoveEventsBySamplePos");
}

void C_EventTagMgr::RemoveEventsByCommand(unsigned short wMain, unsigned short wSub) {
  TakeOutAll(All(), WithCommand(wMain, wSub), "RemoveEventsByCommand");
}

bool C_EventTagMgr::RemoveEventByTime(unsigned int dwTime, int nOccurrence) {
  return TakeOutOne(Where(dwTime, S_Ordering::kByTime), AtTime(dwTime), nOccurrence,
                    "RemoveEventByTime");
}

bool C_EventTagMgr::RemoveEventBySamplePos(unsigned int dwSamplePos, int nOccurrence) {
  return TakeOutOne(Where(dwSamplePos, S_Ordering::kBySample), AtSample(dwSamplePos), nOccurrence,
                    "RemoveEventBySamplePos");
}

bool C_EventTagMgr::RemoveEventByCommand(unsigned short wMain, unsigned short wSub,
                                         int nOccurrence) {
  return TakeOutOne(All(), WithCommand(wMain, wSub), nOccurrence, "RemoveEventByCommand");
}

I_EventTag* C_EventTagMgr::Insert(std::unique_ptr<C_EventTag> tag, const S_Ordering& ordering) {
  const int nPosition = InsertPosition(ordering.KeyOf(*tag), ordering);
  m_events.Items().insert(m_events.Items().begin() + nPosition, tag.get());
  CheckOtherOrder(nPosition, ordering);
  return tag.release();
}

int C_EventTagMgr::InsertPosition(unsigned int dwKey, const S_Ordering& ordering) {
  if (IsKnown(ordering)) return PositionAfter(dwKey, ordering);
  const int nPosition = SearchedPosition(dwKey, ordering);
  // Looking at the whole list takes no more time than the searches before have taken.
  if (m_nPassed > m_events.Items().size()) LearnOrder(ordering);
  return nPosition;
}

// Returns the position after the tags of equal key that a binary search lands on. In a sorted list
// this is after all of them. In a list that a new sample rate left unsorted, the result depends on
// which tags the search looks at, so the search must not change.
int C_EventTagMgr::SearchedPosition(unsigned int dwKey, const S_Ordering& ordering) {
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
  const int nFound = nLow;
  while (nLow != nHigh && KeyAt(nLow) == dwKey) ++nLow;
  m_nPassed += static_cast<std::size_t>(nLow - nFound);
  return nLow;
}

int C_EventTagMgr::PositionAfter(unsigned int dwKey, const S_Ordering& ordering) {
  const std::vector<C_EventTag*>& tags = m_events.Items();
  // Most tags are added at the end.
  if (tags.empty() || ordering.KeyOf(*tags.back()) <= dwKey) return m_events.GetCount();
  // Not upper_bound: where the standard library checks its arguments, it looks at all tags.
  const auto after = std::partition_point(
      tags.begin(), tags.end(), [&](C_EventTag* pTag) { return ordering.KeyOf(*pTag) <= dwKey; });
  return static_cast<int>(after - tags.begin());
}

void C_EventTagMgr::CheckOtherOrder(int nPosition, const S_Ordering& ordering) {
  const S_Ordering& other =
      ordering.eUnit == EVENT_POS_TIME ? S_Ordering::kBySample : S_Ordering::kByTime;
  if (!IsKnown(other)) return;
  const auto KeyAt = [&](int nIndex) { return other.KeyOf(*m_events.GetAt(nIndex)); };
  const bool bInOrder =
      m_dwSampleRate > 0 && (nPosition == 0 || KeyAt(nPosition - 1) <= KeyAt(nPosition)) &&
      (nPosition + 1 == m_events.GetCount() || KeyAt(nPosition) <= KeyAt(nPosition + 1));
  if (!bInOrder) ForgetOrder(other);
}

void C_EventTagMgr::LearnOrder(const S_Ordering& ordering) {
  m_nPassed = 0;
  unsigned int dwBefore = 0;
  for (C_EventTag* pEventTag : m_events.Items()) {
    if (pEventTag == nullptr || !pEventTag->HasMomentIn(ordering.eUnit)) return;
    const unsigned int dwKey = ordering.KeyOf(*pEventTag);
    if (dwKey < dwBefore) return;
    dwBefore = dwKey;
  }
  NoteOrder(ordering);
}

bool C_EventTagMgr::IsKnown(const S_Ordering& ordering) const {
  const S_KnownOrder& order = m_orders[ordering.eUnit];
  return order.bNoted && order.nMoves == C_EventTag::Moves() &&
         m_nExchanges == EventList::Exchanges();
}

void C_EventTagMgr::NoteOrder(const S_Ordering& ordering) { m_orders[ordering.eUnit] = {}; }

void C_EventTagMgr::ForgetOrder(const S_Ordering& ordering) {
  m_orders[ordering.eUnit].bNoted = false;
}

C_EventTagMgr::S_Range C_EventTagMgr::Where(unsigned int dwKey, const S_Ordering& ordering) {
  if (!IsKnown(ordering)) return All();
  const int nFirst = dwKey == 0 ? 0 : PositionAfter(dwKey - 1, ordering);
  return {nFirst, PositionAfter(dwKey, ordering)};
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
bool C_EventTagMgr::IsInOrderOfSamples() {
  if (IsKnown(S_Ordering::kBySample)) return true;
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
  std::vector<C_EventTag*>& listed = m_events.Items();
  std::size_t nListed = listed.size();
  std::size_t nTarget = nListed + tags.size();
  listed.resize(nTarget);
  while (!tags.empty()) {
    const unsigned int dwNew = tags.back()->GetSamplePos();
    for (; nListed > 0 && listed[nListed - 1]->GetSamplePos() > dwNew; --nListed) {
      listed[--nTarget] = listed[nListed - 1];
    }
    listed[--nTarget] = tags.back().release();
    tags.pop_back();
  }
  NoteOrder(S_Ordering::kBySample);
  ForgetOrder(S_Ordering::kByTime);
}

template <typename Match>
I_CLArray<I_EventTag*>* C_EventTagMgr::Collect(S_Range range, Match match,
                                               const char* pszFunction) {
  m_found.RemoveAll();
  for (int i = range.nFirst; i < range.nLast; ++i) {
    C_EventTag& tag = TagAt(m_events, i, pszFunction);
    if (match(tag)) m_found.Items().push_back(&tag);
  }
  return &m_found;
}

template <typename Match>
void C_EventTagMgr::TakeOutAll(S_Range range, Match match, const char* pszFunction) {
  // Those that stay move up to the end of the range, and what is left of it is removed at once.
  int nKept = range.nLast;
  for (int i = range.nLast - 1; i >= range.nFirst; --i) {
    C_EventTag& tag = TagAt(m_events, i, pszFunction);
    if (!match(tag)) m_events.Items()[static_cast<std::size_t>(--nKept)] = &tag;
  }
  m_events.RemoveAt(range.nFirst, nKept - range.nFirst);
}

template <typename Match>
bool C_EventTagMgr::TakeOutOne(S_Range range, Match match, int nOccurrence,
                               const char* pszFunction) {
  int nMatches = 0;
  for (int i = range.nFirst; i < range.nLast; ++i) {
    if (!match(TagAt(m_events, i, pszFunction))) continue;
    if (nMatches == nOccurrence) return RemoveEvent(i);
    ++nMatches;
  }
  return false;
}
