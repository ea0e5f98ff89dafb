// SPDX-License-Identifier: Apache-2.0
//
// What the chunks of a RIFF file say beside its samples, and the chunks that say it. Events,
// silence and regions are cue points with labels, as file/WavLabels.h and file/VefLabels.h describe
// them; what these forms hold is read and written in the same way as there. Everything else is kept
// as it is: cue points, labels and texts of other makers, in their order; chunks that are not
// understood, byte for byte.
//
//   several "cue ", "smpl" or adtl lists  the last one counts; the others are further chunks, and
//                                         are written before it
//   unknown parts of adtl lists           one further chunk "LIST" of type "adtl" with all of them;
//                                         they are written into the list with the labels
//   "take_1" in a WAV file                reads as an event, and stays a label as well; when both
//                                         are written, the label alone says it; when there is no
//                                         such event, it is among what is lost that readers find it
//   "u_3_7" without its cue point         a label; a WAV file with it would stop the class library,
//                                         so it is among what is lost
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "notes/Notes.h"

namespace api {

enum class E_RiffForm { Wave, Vef };  // VEMD files are like WAV files

struct S_HeldChunk {
  S_FourCC id{};
  std::vector<std::uint8_t> data;
  bool bCut = false;  // the end of the file cuts it; data is what is there
};

// The notes of the chunks of a file, except for "fmt ", "data", "fact", "ds64", "JUNK" of zeros
// and, of VEF files, "vafm" and "vdat", which the caller leaves out. bCutShort is true of a file
// that is cut anywhere: labels may then lack their cue points. Throws C_Failure (VOXPLAY_DAMAGED)
// for what the class library refuses. Payloads that are kept are moved from the chunks.
S_Notes ReadRiffNotes(std::vector<S_HeldChunk> chunks, E_RiffForm eForm, bool bCutShort);

struct S_RiffNotes {
  std::vector<S_NoteChunk> marks;   // "cue ", "smpl", "LIST" of type "adtl": those that are needed
  std::vector<S_NoteChunk> others;  // the further chunks, in their order
  // What these chunks do not say, one sentence each.
  std::vector<std::string> lost;
};

// The chunks for a sound of so many frames; marks beyond its end are written, too. Identifiers of
// cue points count from 1 for events, silence and regions, in this order; those of other cue points
// are left as they are, and the former take the lowest that are free. Throws C_Failure
// (VOXPLAY_TOO_LARGE) for marks that do not fit in 4 GiB.
S_RiffNotes WriteRiffNotes(const S_Notes& notes, E_RiffForm eForm, std::uint64_t qwFrames);

// What a container without chunks loses of the notes: everything, one sentence each. strHolder is
// the subject of the sentence, "an SP header".
std::vector<std::string> AllLost(const S_Notes& notes, const std::string& strHolder);
std::vector<std::string> AllLostButEvents(const S_Notes& notes, const std::string& strHolder);

}  // namespace api
