// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/Console.h"
#include "convert/ConvertArguments.h"

namespace tool {

// Converts the files of a manifest, after those that the arguments name have been added to it.
// Returns the exit code: 0 when nothing in the manifest has failed.
int ConvertByManifest(S_ConvertArguments arguments, C_Console& console);

}  // namespace tool
