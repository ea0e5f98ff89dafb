// SPDX-License-Identifier: Apache-2.0
//
// What the cue points and labels of a file mean.
//
// Labels of the library become events, silence and regions, and are not listed themselves. Nor are
// their cue points, and the text with the length of a range, unless another label or text has the
// same identifier. Everything else is listed in the order of the file. A label of the library
// without a cue point means nothing; it is listed, except in a file that is cut short, where the
// cue point may have stood in the missing part.
#pragma once

#include <span>

#include "notes/MarkChunks.h"
#include "notes/Notes.h"
#include "notes/RiffNotes.h"

namespace api {

void AddMarks(std::span<const S_NoteCue> cues, const S_LabelList& list, E_RiffForm eForm,
              bool bCutShort, S_Notes& notes);

}  // namespace api
