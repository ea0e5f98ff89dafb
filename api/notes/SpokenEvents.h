// SPDX-License-Identifier: Apache-2.0
//
// Which events the labels of other makers say: "take_1" in a WAV file reads as an event, so no
// label of the library's own is needed for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <tuple>
#include <vector>

#include "notes/LabelForms.h"
#include "notes/Notes.h"
#include "notes/RiffNotes.h"

namespace api {

class C_SpokenEvents {
 public:
  C_SpokenEvents(std::span<const S_NoteEvent> events, E_RiffForm eForm);

  // Finds an event for a label that says one; call it in the order in which the labels are written.
  // False when there is none, so that readers find one event more than there is.
  bool Take(std::size_t nLabel, std::uint32_t dwFrame, const S_LabelMeaning& meaning);

  // The label that says an event; empty when none does.
  [[nodiscard]] std::optional<std::size_t> LabelOf(std::size_t nEvent) const {
    return m_spoken[nEvent].nLabel;
  }
  // Whether readers find the event in another place among those of its frame.
  [[nodiscard]] bool IsMisplaced(std::size_t nEvent) const { return m_spoken[nEvent].bMisplaced; }

 private:
  using C_Key = std::tuple<std::uint64_t, std::uint16_t, std::uint16_t, std::uint32_t>;
  struct S_Alike {
    std::vector<std::size_t> events;  // in ascending order
    std::size_t nPassed = 0;          // the first so many of them are said
  };
  struct S_Spoken {
    std::optional<std::size_t> nLabel;
    bool bMisplaced = false;
  };

  std::optional<std::size_t> FirstUnspoken(S_Alike& alike) const;

  std::map<C_Key, S_Alike> m_alike;
  std::map<std::uint32_t, std::size_t> m_ends;  // of what is said at a frame: one after the last
  std::vector<S_Spoken> m_spoken;               // one for each event
};

}  // namespace api
