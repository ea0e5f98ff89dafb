// SPDX-License-Identifier: Apache-2.0
//
// The options of a conversion as a manifest keeps them, so that all of its files are converted in
// the same way.
#pragma once

#include <string>

#include "convert/ConvertArguments.h"

namespace tool {

// What changes what is written, as JSON.
[[nodiscard]] std::string StoredOptions(const S_ConvertArguments& arguments);
// As they are written: "--to kestrel --bitrate 24000".
[[nodiscard]] std::string OptionsText(const S_ConvertArguments& arguments);
// Fills in what is not given; nothing when strStored is "". Throws C_UsageFailure, which strName
// begins, for what is given and is different, and C_Failure when the text cannot be used.
void TakeStoredOptions(const std::string& strStored, const std::string& strName,
                       S_ConvertArguments& arguments);

// The same for what happens to targets that exist, which may be another one in each run.
[[nodiscard]] std::string StoredRule(const S_TargetOptions& target);
void TakeStoredRule(const std::string& strStored, S_TargetOptions& target);

}  // namespace tool
