// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tool {

// "12.50" for two decimals, whatever the language of the user is.
std::string NumberText(double dValue, int nDecimals);

// The finite number that the whole text is.
std::optional<double> NumberIn(std::string_view text);

}  // namespace tool
