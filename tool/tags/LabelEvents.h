// SPDX-License-Identifier: Apache-2.0
//
// Events that labels say (sound/SpokenEvents.h). They come and go with their labels, whatever is
// done to those.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sound/SpokenEvents.h"
#include "voxplay.hpp"

namespace tool {

// Makes the events of notes follow the labels after an edit: those whose label has gone go as well,
// once for each, unless bNamed says that the edit has named all events that there are to be. Those
// that are missing beside their label are added. Returns what is added for labels that are new.
std::vector<S_EventKey> FollowLabels(const voxplay::NotesView& before, voxplay::Notes& notes,
                                     std::uint32_t dwContainer, bool bNamed);

// The notes without the events that labels say, which come back by themselves with the labels.
// Empty when labels say none.
std::optional<voxplay::Notes> WithoutLabelEvents(const voxplay::NotesView& notes,
                                                 std::uint32_t dwContainer);

// Throws C_Failure when an event is missing in edited notes that a label says. The event is in
// before, whose labels are the same.
void RefuseToRemove(const std::string& strFile, const voxplay::NotesView& before,
                    const voxplay::NotesView& notes, std::uint32_t dwContainer);

}  // namespace tool
