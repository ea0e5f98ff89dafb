// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace tool {

// "12.50" for two decimals, whatever the language of the user is.
std::string NumberText(double dValue, int nDecimals);

}  // namespace tool
