// SPDX-License-Identifier: Apache-2.0
//
// What all ways of storing events in RIFF files share: an event is stored as a cue point and a
// label with the same identifier.
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

// Values by cue point identifier. When several values have the same identifier, the first one
// counts. The list is sorted rather than hashed, so that no choice of identifiers in a file makes
// the search slow.
class C_ByID {
 public:
  void Add(unsigned int dwID, unsigned int dwValue) { m_values.emplace_back(dwID, dwValue); }
  // Call it once, after the last Add and before the first Find.
  void Sort();
  // The first value with this identifier; empty when there is none.
  [[nodiscard]] std::optional<unsigned int> Find(unsigned int dwID) const;

 private:
  std::vector<std::pair<unsigned int, unsigned int>> m_values;
};

// The sample positions of the cue points.
C_ByID Positions(I_WavDataCueInfo& cueInfo);

// Adds a label, and a cue point at sample frame dwSamplePos, with the same identifier.
void AddPoint(I_WavDataCueInfo& cueInfo, I_WavDataListInfo& listInfo, unsigned int dwID,
              unsigned int dwSamplePos, const char* pszLabel);

// The event manager of a sound, and the events of a manager. A missing manager, list or event stops
// the program with an assertion that names the site.
I_EventTagMgr& ManagerOf(I_WavData& wavData, const vcm::S_AssertSite& site);
std::vector<I_EventTag*> EventsOf(I_EventTagMgr& events, const vcm::S_AssertSite& site);

// Adds the events at their sample positions. The manager needs a sample rate: without one, adding
// an event stops the program.
void AddEvents(I_EventTagMgr& events, const std::vector<C_EventTagMgr::S_SampleEvent>& placed);

}  // namespace cuedevents
