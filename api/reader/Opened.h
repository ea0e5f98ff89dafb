// SPDX-License-Identifier: Apache-2.0
//
// The ways in which files are opened, one for each container. They are given a source whose first
// bytes have passed the test of the container (Detection.h), and throw C_Failure when the file
// cannot be opened.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "notes/Notes.h"
#include "riff/RiffScan.h"
#include "source/ByteSource.h"
#include "stream/SampleStream.h"
#include "voxplay.h"

namespace api {

struct S_Opened {
  // Without frames and damaged_frames, which change while the sound is read, and is_cut as far as
  // they tell it.
  voxplay_info info{};
  voxplay_headers headers{};
  S_Notes notes;
  std::vector<S_FoundChunk> chunks;  // of a RIFF file
  C_SampleStreamPtr stream;          // reads from the source
};

// dwFlags are those of the reader, VOXPLAY_READ_....
S_Opened OpenWav(I_ByteSource& source, std::uint32_t dwFlags);
S_Opened OpenSp(I_ByteSource& source, std::uint32_t dwFlags);
S_Opened OpenVef(I_ByteSource& source, std::uint32_t dwFlags);
S_Opened OpenHead(I_ByteSource& source, std::uint32_t dwFlags);
S_Opened OpenBare(I_ByteSource& source, std::uint32_t dwFlags);

using PFN_Open = S_Opened (*)(I_ByteSource& source, std::uint32_t dwFlags);
// In the order of kTests.
inline constexpr std::array<PFN_Open, 5> kOpeners = {&OpenWav, &OpenSp, &OpenVef, &OpenHead,
                                                     &OpenBare};

}  // namespace api
