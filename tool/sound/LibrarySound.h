// SPDX-License-Identifier: Apache-2.0
//
// Files of our own formats, through voxplay.h.
#pragma once

#include <cstdint>
#include <string>

#include "sound/FileBytes.h"
#include "sound/SoundInput.h"

namespace tool {

// dwFlags are those of voxplay.h. Both throw voxplay::Error when the file is none of ours.
C_SoundInputPtr OpenLibrarySound(const std::string& strPath, std::uint32_t dwFlags);
C_SoundInputPtr OpenLibrarySound(C_FileBytes file, const std::string& strName,
                                 std::uint32_t dwFlags);

}  // namespace tool
