// SPDX-License-Identifier: Apache-2.0
#include "tags/LabelEvents.h"

#include <algorithm>
#include <set>

#include "base/Failure.h"
#include "base/Utf8.h"
#include "tags/SameNotes.h"

namespace tool {
namespace {

using Spoken = std::vector<S_SpokenEvent>;

C_EventCounts CountsOf(const voxplay::NotesView& notes) {
  C_EventCounts counts;
  for (const voxplay::Event event : notes.events()) counts.Add(KeyOf(event));
  return counts;
}

// Those that are not in the counts, each of which stands for one.
Spoken Without(const Spoken& spoken, C_EventCounts counts) {
  Spoken rest;
  for (const S_SpokenEvent& event : spoken) {
    if (!counts.Take(event.key)) rest.push_back(event);
  }
  return rest;
}

void Remove(const Spoken& spoken, voxplay::Notes& notes) {
  C_EventCounts gone(spoken);
  const voxplay::Notes old(notes);
  notes.clear(VOXPLAY_NOTE_EVENT);
  for (const voxplay::Event event : old.view().events()) {
    if (!gone.Take(KeyOf(event))) notes.add(event);
  }
}

voxplay::Event EventOf(const S_EventKey& key) {
  return {key.qwFrame, key.wMain, key.wSub, key.dwData, ""};
}

// Where one is missing, those that labels say come before all others of their frame, because
// readers find them in the order of the labels.
void AddMissing(const Spoken& missing, const Spoken& spoken, voxplay::Notes& notes) {
  std::set<std::uint64_t> frames;
  for (const S_SpokenEvent& event : missing) frames.insert(event.key.qwFrame);
  const voxplay::Notes old(notes);
  notes.clear(VOXPLAY_NOTE_EVENT);
  C_EventCounts added;
  for (const S_SpokenEvent& event : spoken) {
    if (!frames.contains(event.key.qwFrame)) continue;
    notes.add(EventOf(event.key));
    added.Add(event.key);
  }
  for (const voxplay::Event event : old.view().events()) {
    if (!added.Take(KeyOf(event))) notes.add(event);
  }
}

}  // namespace

std::vector<S_EventKey> FollowLabels(const voxplay::NotesView& before, voxplay::Notes& notes,
                                     std::uint32_t dwContainer, bool bNamed) {
  if (!bNamed && HaveSameLabels(before, notes)) return {};
  const Spoken old = SpokenEvents(before, dwContainer);
  const Spoken spoken = SpokenEvents(notes, dwContainer);
  const Spoken gone = bNamed ? Spoken() : Without(old, C_EventCounts(spoken));
  if (!gone.empty()) Remove(gone, notes);
  const Spoken missing = Without(spoken, CountsOf(notes));
  if (!missing.empty()) AddMissing(missing, spoken, notes);
  std::vector<S_EventKey> added;
  for (const S_SpokenEvent& event : Without(missing, C_EventCounts(old))) {
    added.push_back(event.key);
  }
  return added;
}

std::optional<voxplay::Notes> WithoutLabelEvents(const voxplay::NotesView& notes,
                                                 std::uint32_t dwContainer) {
  const Spoken spoken = SpokenEvents(notes, dwContainer);
  if (spoken.empty()) return {};
  voxplay::Notes own(notes);
  Remove(spoken, own);
  return own;
}

void RefuseToRemove(const std::string& strFile, const voxplay::NotesView& before,
                    const voxplay::NotesView& notes, std::uint32_t dwContainer) {
  const Spoken missing = Without(SpokenEvents(before, dwContainer), CountsOf(notes));
  if (missing.empty()) return;
  const auto events = before.events();
  std::size_t nEvent = 0;
  while (KeyOf(events[nEvent]) != missing.front().key) ++nEvent;
  const std::string strLabel = Printable(before.labels()[missing.front().nLabel].text);
  throw C_Failure(strFile, "nothing is changed",
                  "event " + std::to_string(nEvent + 1) + " is read from a label, \"" + strLabel +
                      "\": remove that");
}

}  // namespace tool
