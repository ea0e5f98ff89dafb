// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace tool {

// One line of the sentences that voxplay::Writer::lost gives: "3 events and 1 label are not kept:
// an SP header holds none". "" when there are none.
[[nodiscard]] std::string LostText(const std::vector<std::string>& sentences);

}  // namespace tool
