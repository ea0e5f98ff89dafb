// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "compare/Comparison.h"
#include "sound/SoundInput.h"

namespace tool {

struct S_Compared {
  std::string strFirst;  // what messages call them
  std::string strSecond;
  S_SoundInfo first;
  S_SoundInfo second;
  S_Comparison result;
};

// For people.
std::string ReportText(const S_Compared& compared);
// One object. Ratios and levels that are infinite are null, as are ratios of silence alone; of the
// ratio of all, a member says which of both it is.
std::string ReportJson(const S_Compared& compared);

}  // namespace tool
