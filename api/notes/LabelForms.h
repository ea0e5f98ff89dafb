// SPDX-License-Identifier: Apache-2.0
//
// What the text of a label says to this library. Its own labels say one thing each, and are written
// anew from what they say. Texts of other makers can mean an event as well, "take_1" for instance:
// such a label stays a label beside its event.
#pragma once

#include <cstdint>
#include <string>

#include "notes/Notes.h"
#include "notes/RiffNotes.h"

namespace api {

struct S_LabelMeaning {
  enum class E_Kind { None, Event, Silence, Region };

  E_Kind eKind = E_Kind::None;
  std::uint16_t wMain = 0;  // of an event
  std::uint16_t wSub = 0;
  std::uint32_t dwData = 0;
};

// What a label stands for in a file of this form.
S_LabelMeaning MeaningOf(const std::string& strText, E_RiffForm eForm);

// Whether the text is one that the library gives its own labels in files of this form, or gave them
// once. Nothing is lost when such a label is written anew.
bool IsOwnLabel(const std::string& strText, E_RiffForm eForm);
// Whether it is the one of silence or of a region, which has a text with the length of the range.
bool IsRangeLabel(const std::string& strText);

// The label of an event.
std::string OwnEventLabel(const S_NoteEvent& event, E_RiffForm eForm);

}  // namespace api
