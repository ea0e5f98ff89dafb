// SPDX-License-Identifier: Apache-2.0
#include "notes/SpokenEvents.h"

#include <algorithm>

namespace api {

// WAV files hold no data of events.
C_SpokenEvents::C_SpokenEvents(std::span<const S_NoteEvent> events, E_RiffForm eForm)
    : m_spoken(events.size()) {
  for (std::size_t i = 0; i < events.size(); ++i) {
    const S_NoteEvent& event = events[i];
    const std::uint32_t dwData = eForm == E_RiffForm::Vef ? event.dwData : 0;
    m_alike[{event.qwFrame, event.wMain, event.wSub, dwData}].events.push_back(i);
  }
}

// An event after those that are said already keeps the order of the events.
bool C_SpokenEvents::Take(std::size_t nLabel, std::uint32_t dwFrame,
                          const S_LabelMeaning& meaning) {
  const auto found = m_alike.find({dwFrame, meaning.wMain, meaning.wSub, meaning.dwData});
  if (found == m_alike.end()) return false;
  const std::vector<std::size_t>& events = found->second.events;
  std::size_t& nEnd = m_ends[dwFrame];
  const auto next = std::ranges::lower_bound(events, nEnd);
  if (next != events.end()) {
    m_spoken[*next] = {nLabel, false};
    nEnd = *next + 1;
    return true;
  }
  const std::optional<std::size_t> nEvent = FirstUnspoken(found->second);
  if (nEvent) m_spoken[*nEvent] = {nLabel, true};
  return nEvent.has_value();
}

std::optional<std::size_t> C_SpokenEvents::FirstUnspoken(S_Alike& alike) const {
  while (alike.nPassed < alike.events.size()) {
    const std::size_t nEvent = alike.events[alike.nPassed];
    if (!m_spoken[nEvent].nLabel) return nEvent;
    ++alike.nPassed;
  }
  return std::nullopt;
}

}  // namespace api
