// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// "voxtool tags": shows and changes events, cue points, labels, silence, regions and loops.
void AddTagsCommand(C_CommandLine& commandLine);

}  // namespace tool
