// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace tool {

// Lengths of time for people: "0.25 s", "41 s", "3 min 5 s", "3 h 12 min", "12 d 4 h".
[[nodiscard]] std::string DurationText(double dSeconds);

}  // namespace tool
