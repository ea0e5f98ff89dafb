// SPDX-License-Identifier: Apache-2.0
//
// Moments in a sound with a command attached, and the ordered set of them that a sound owns.
#pragma once

#include "CLArray.h"

class I_EventTag {
 public:
  virtual unsigned short GetMainCommandIndex() = 0;                             // 1
  virtual unsigned short GetSubCommandIndex() = 0;                              // 2
  virtual void SetCommandIndex(unsigned short wMain, unsigned short wSub) = 0;  // 3
  // Milliseconds. A moment set in samples is converted, which needs a sample rate: without one the
  // program stops.
  virtual unsigned int GetTime() = 0;                           // 4
  virtual void SetTime(unsigned int dwTime) = 0;                // 5
  virtual const char* GetDescription() = 0;                     // 6, never null
  virtual void SetDescription(const char* pszDescription) = 0;  // 7, copied; null clears
  virtual unsigned int GetData() = 0;                           // 8
  virtual void SetData(unsigned int dwData) = 0;                // 9
  // Samples. A moment set as a time is converted, which needs a sample rate: without one the
  // program stops.
  virtual unsigned int GetSamplePos() = 0;                  // 10
  virtual void SetSamplePos(unsigned int dwSamplePos) = 0;  // 11
  virtual ~I_EventTag() = default;                          // 12
};

// Tags in ascending order of their moment. Tags taken out by the Remove... operations (except
// RemoveAllEvents) are not deleted: they then belong to the caller.
class I_EventTagMgr {
 public:
  // Both adders return the new tag, which the manager owns.
  virtual I_EventTag* AddEvent(unsigned short wMain, unsigned short wSub, unsigned int dwTime,
                               const char* pszDescription, unsigned int dwData) = 0;  // 1
  virtual void RemoveAllEvents() = 0;                                                 // 2, deletes
  // All queries share one result list, and each query empties it first.
  virtual I_CLArray<I_EventTag*>* GetEventsByTime(unsigned int dwTime) = 0;  // 3
  virtual I_CLArray<I_EventTag*>* GetEventsByCommand(unsigned short wMain,
                                                     unsigned short wSub) = 0;  // 4
  virtual I_CLArray<I_EventTag*>* GetEventList() = 0;         // 5, the list itself
  virtual bool AddEvents(I_CLArray<I_EventTag*>* pList) = 0;  // 6
  virtual I_EventTag* AddEventBySamplePos(unsigned short wMain, unsigned short wSub,
                                          unsigned int dwSamplePos, const char* pszDescription,
                                          unsigned int dwData) = 0;                    // 7
  virtual I_CLArray<I_EventTag*>* GetEventsBySamplePos(unsigned int dwSamplePos) = 0;  // 8
  virtual void SetSampleRate(unsigned int dwSampleRate) = 0;                           // 9
  virtual unsigned int GetSampleRate() = 0;                                            // 10
  virtual bool RemoveEvent(int nIndex) = 0;                                            // 11
  virtual void RemoveEventsByTime(unsigned int dwTime) = 0;                            // 12
  virtual void RemoveEventsBySamplePos(unsigned int dwSamplePos) = 0;                  // 13
  virtual void RemoveEventsByCommand(unsigned short wMain, unsigned short wSub) = 0;   // 14
  // Removes the nOccurrence-th match, counted from 0; false when there is no such match.
  virtual bool RemoveEventByTime(unsigned int dwTime, int nOccurrence) = 0;            // 15
  virtual bool RemoveEventBySamplePos(unsigned int dwSamplePos, int nOccurrence) = 0;  // 16
  virtual bool RemoveEventByCommand(unsigned short wMain, unsigned short wSub,
                                    int nOccurrence) = 0;  // 17
  virtual ~I_EventTagMgr() = default;                      // 18
};
