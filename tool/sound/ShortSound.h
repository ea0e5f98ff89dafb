// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "voxplay.hpp"

namespace tool {

struct S_ShortSound {
  std::vector<std::byte> bytes;
  std::vector<std::string> lost;  // as voxplay::Writer tells it
};

// The file that a single frame of silence would be: the headers, and the chunks with the notes.
S_ShortSound WriteShortSound(const voxplay::Format& format, const voxplay::NotesView& notes = {});

}  // namespace tool
