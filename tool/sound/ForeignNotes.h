// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sndfile.h>

#include "voxplay.hpp"

namespace tool {

// What libsndfile tells of a file beside its samples, as WAV files would have it: cue points and
// their names, loops, and the texts that are INFO titles there. Commands need the file writable in
// their type, but do not change it.
voxplay::Notes ForeignNotes(SNDFILE* pFile);

}  // namespace tool
