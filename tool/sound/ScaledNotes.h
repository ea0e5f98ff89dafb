// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "voxplay.hpp"

namespace tool {

// The notes of a sound at another rate: all frames and lengths are where they were in time. Chunks
// without a meaning are kept as they are.
voxplay::Notes ScaledNotes(const voxplay::NotesView& notes, std::uint32_t dwFrom,
                           std::uint32_t dwTo);

}  // namespace tool
