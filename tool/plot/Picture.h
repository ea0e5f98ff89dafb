// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "plot/Overview.h"
#include "plot/PlotOptions.h"
#include "sound/SoundInput.h"

namespace tool {

// The file of a picture of a sound. strName is what failures call it, and what the title shows
// without folders. Throws C_Failure, C_UsageFailure, C_Interrupted and voxplay::Error.
std::string PictureOf(I_SoundInput& input, const std::string& strName, const S_PlotOptions& options,
                      const PFN_FramesDone& fnDone);

}  // namespace tool
