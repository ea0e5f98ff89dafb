// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "plot/Overview.h"
#include "plot/PlotOptions.h"
#include "sound/SoundInput.h"

namespace tool {

struct S_Picture {
  std::string strFile;         // its bytes
  std::uint64_t qwFrames = 0;  // of the whole sound, as far as they are there
  bool bCut = false;           // the end is missing
};

// A picture of a sound. strName is what failures call it, and what the title shows without folders.
// Throws C_Failure, C_UsageFailure, C_Interrupted and voxplay::Error.
S_Picture PictureOf(I_SoundInput& input, const std::string& strName, const S_PlotOptions& options,
                    const PFN_FramesDone& fnDone);

}  // namespace tool
