// SPDX-License-Identifier: Apache-2.0
//
// The event tags of one sound, in ascending order of their moment. On destruction the manager
// deletes the tags in its list. Tags taken out by the Remove... operations (except RemoveAllEvents)
// belong to the caller.
//
// The manager knows that its list is in order until somebody else puts a tag into a list of tags,
// or a tag gets another moment. It then finds a moment without looking at all tags: 100,000 events
// at one moment are added in no more time than at different ones.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "CLArray.h"
#include "annotation/EventTag.h"
#include "interface/I_EventTag.h"

class C_EventTagMgr : public I_EventTagMgr {
 public:
  // An event without a description.
  struct S_SampleEvent {
    unsigned int dwSamplePos = 0;
    unsigned short wMain = 0;
    unsigned short wSub = 0;
    unsigned int dwData = 0;
  };
  using EventList = C_CLArray<C_EventTag*, I_EventTag*, false>;

  C_EventTagMgr() = default;
  ~C_EventTagMgr() override;
  C_EventTagMgr(const C_EventTagMgr&) = delete;
  C_EventTagMgr& operator=(const C_EventTagMgr&) = delete;

  // Needs no sample rate as long as every tag in the list was set as a time.
  I_EventTag* AddEvent(unsigned short wMain, unsigned short wSub, unsigned int dwTime,
                       const char* pszDescription, unsigned int dwData) override;
  void RemoveAllEvents() override;
  I_CLArray<I_EventTag*>* GetEventsByTime(unsigned int dwTime) override;
  I_CLArray<I_EventTag*>* GetEventsByCommand(unsigned short wMain, unsigned short wSub) override;
  I_CLArray<I_EventTag*>* GetEventList() override { return &m_events; }
  // Copies the tags that pList holds when the call begins, so pList may be this manager's own list.
  bool AddEvents(I_CLArray<I_EventTag*>* pList) override;
  // Needs a sample rate: without one the program stops.
  I_EventTag* AddEventBySamplePos(unsigned short wMain, unsigned short wSub,
                                  unsigned int dwSamplePos, const char* pszDescription,
                                  unsigned int dwData) override;
  I_CLArray<I_EventTag*>* GetEventsBySamplePos(unsigned int dwSamplePos) override;
  void SetSampleRate(unsigned int dwSampleRate) override;
  unsigned int GetSampleRate() override { return m_dwSampleRate; }
  bool RemoveEvent(int nIndex) override;
  void RemoveEventsByTime(unsigned int dwTime) override;
  void RemoveEventsBySamplePos(unsigned int dwSamplePos) override;
  void RemoveEventsByCommand(unsigned short wMain, unsigned short wSub) override;
  bool RemoveEventByTime(unsigned int dwTime, int nOccurrence) override;
  bool RemoveEventBySamplePos(unsigned int dwSamplePos, int nOccurrence) override;
  bool RemoveEventByCommand(unsigned short wMain, unsigned short wSub, int nOccurrence) override;

  // Has the same effect as AddEventBySamplePos for each event in turn. As long as the list is in
  // sample order, n events take only n log n time: a file may hold 100,000 events at one moment.
  void AddEventsBySamplePos(std::span<const S_SampleEvent> events);

 private:
  struct S_Ordering;
  class C_Tags : public EventList {
   public:
    using EventList::Items;
  };
  // Whether the list is known to be in ascending order of the moments in one unit. Such a list
  // contains no null, and every tag has a moment in this unit.
  struct S_KnownOrder {
    bool bNoted = true;  // an empty list is in order
    std::size_t nMoves = C_EventTag::Moves();
  };
  // Positions in the list, the last one not included.
  struct S_Range {
    int nFirst;
    int nLast;
  };

  I_EventTag* Insert(std::unique_ptr<C_EventTag> tag, const S_Ordering& ordering);
  int InsertPosition(unsigned int dwKey, const S_Ordering& ordering);
  int SearchedPosition(unsigned int dwKey, const S_Ordering& ordering);
  // The first position whose key is greater, in a list that is in order.
  [[nodiscard]] int PositionAfter(unsigned int dwKey, const S_Ordering& ordering);
  // Forgets that the list is in order of the other unit when the tag at this position is not.
  void CheckOtherOrder(int nPosition, const S_Ordering& ordering);
  void LearnOrder(const S_Ordering& ordering);
  [[nodiscard]] bool IsKnown(const S_Ordering& ordering) const;
  void NoteOrder(const S_Ordering& ordering);
  void ForgetOrder(const S_Ordering& ordering);
  [[nodiscard]] S_Range All() { return {0, m_events.GetCount()}; }
  // Where tags with this key can be: all positions, unless the list is known to be in order.
  [[nodiscard]] S_Range Where(unsigned int dwKey, const S_Ordering& ordering);
  [[nodiscard]] bool IsInOrderOfSamples();
  void MergeBySamplePos(std::vector<std::unique_ptr<C_EventTag>> tags);
  template <typename Match>
  I_CLArray<I_EventTag*>* Collect(S_Range range, Match match, const char* pszFunction);
  template <typename Match>
  void TakeOutAll(S_Range range, Match match, const char* pszFunction);
  template <typename Match>
  bool TakeOutOne(S_Range range, Match match, int nOccurrence, const char* pszFunction);

  C_Tags m_events;
  C_Tags m_found;
  unsigned int m_dwSampleRate = 0;
  std::array<S_KnownOrder, 2> m_orders;  // of times and of samples
  // When the list was empty. What others have put in they may exchange without notice, through the
  // reference that SetAt returned.
  std::size_t m_nExchanges = EventList::Exchanges();
  std::size_t m_nPassed = 0;  // tags passed in searches since the order was last looked at
};
