// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "info/FileReport.h"

namespace tool {

// A report for people: several lines, of which the first one is the name of the file.
std::string InfoText(const S_FileReport& report, bool bColours);

}  // namespace tool
