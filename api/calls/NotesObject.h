// SPDX-License-Identifier: Apache-2.0
//
// The object behind voxplay_notes.
#pragma once

#include "notes/NoteEdits.h"
#include "notes/Notes.h"
#include "voxplay.h"

// Events and ranges that are added out of order are put in their places when somebody looks at
// them: n of them then take n log n time, in whatever order they come.
struct voxplay_notes {
  mutable api::S_Notes notes;
  mutable bool bInOrder = true;
};

namespace api {

// The notes as voxplay.h promises them. All that reads them, does it through here.
inline const S_Notes& NotesOf(const voxplay_notes& object) {
  if (!object.bInOrder) PutInOrder(object.notes);
  object.bInOrder = true;
  return object.notes;
}

}  // namespace api
