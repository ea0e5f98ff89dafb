// SPDX-License-Identifier: Apache-2.0
//
// What all ways of storing events in RIFF files share: an event travels as a cue point and a label
// of the same identifier.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "CLArray.h"
#include "VcmAssert.h"
#include "annotation/EventTagMgr.h"
#include "interface/I_WavData.h"
#include "interface/I_WavDataInfo.h"

namespace cuedevents {

// Values by cue point identifier; of several with the same identifier the first counts. Sorted
// rather than hashed, so that no choice of identifiers in a file makes the search slow.
class C_ByID {
 public:
  void Add(unsigned int dwID, unsigned int dwValue) { m_values.emplace_back(dwID, dwValue); }
  // To be called once between the last Add and the first Find.
  void Sort();
  [[nodiscard]] std::optional<unsigned int> Find(unsigned int dwID) const;

 private:
  std::vector<std::pair<unsigned int, unsigned int>> m_values;
};

// The sample positions of the cue points.
C_ByID Positions(I_WavDataCueInfo& cueInfo);

// Adds a cue point in the sound's samples, and its label.
void AddPoint(I_WavDataCueInfo& cueInfo, I_WavDataListInfo& listInfo, unsigned int dwID,
              unsigned int dwSamplePos, const char* pszLabel);

// The sound's event manager, and a manager's events without null ones. A missing object stops the
// program with an assertion of that site.
I_EventTagMgr& ManagerOf(I_WavData& wavData, const vcm::S_AssertSite& site);
std::vector<I_EventTag*> EventsOf(I_EventTagMgr& events, const vcm::S_AssertSite& site);

// Needs a sample rate: without one the program stops.
void AddEvents(I_EventTagMgr& events, const std::vector<C_EventTagMgr::S_SampleEvent>& placed);

}  // namespace cuedevents
