// SPDX-License-Identifier: Apache-2.0
//
// WAV files whose samples libsndfile decodes, and whose chunks are like those of all others.
#pragma once

#include <cstdint>
#include <optional>

#include "sound/FileBytes.h"
#include "voxplay.hpp"

namespace tool {

// How many frames a file of GSM 6.10 has; none for other files. libsndfile decodes the pad byte
// after an odd number of blocks as well, to loud noise. Moves the position.
std::optional<std::uint64_t> GsmFrames(C_FileBytes& bytes);

// What voxplay.h reads beside the samples.
struct S_WavMarks {
  voxplay::Notes notes;
  bool bCut = false;
};
// None for files that are no RIFF files of the form WAVE.
std::optional<S_WavMarks> ReadWavMarks(const C_FileBytes& bytes);

}  // namespace tool
