// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "batch/BatchOptions.h"
#include "batch/FileList.h"
#include "batch/Targets.h"

namespace tool {

// The target of each file: that of -o, which is for a single file, or one with the extension below
// the folder of -d. Throws C_UsageFailure when neither is given, and when the files cannot have
// these targets.
PFN_TargetOf ChooseTargets(const S_TargetOptions& options, std::string_view extension,
                           const C_FileList& list);

}  // namespace tool
