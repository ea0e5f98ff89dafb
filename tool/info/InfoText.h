// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "info/SoundReport.h"

namespace tool {

// A report for people: several lines, of which the first one is the name of the file.
std::string InfoText(const S_SoundReport& report, bool bColours);

}  // namespace tool
