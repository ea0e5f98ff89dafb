// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "voxplay.hpp"

namespace tool {

// Whether notes say the same in the same order, other chunks included.
bool AreSame(const voxplay::NotesView& a, const voxplay::NotesView& b);
// The same of cue points and labels alone.
bool HaveSameLabels(const voxplay::NotesView& a, const voxplay::NotesView& b);

}  // namespace tool
