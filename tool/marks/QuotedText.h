// SPDX-License-Identifier: Apache-2.0
//
// Texts on one line. A text that cannot stand there as it is, because it has control characters
// or would be taken for something else, stands between quotes, with "\n", "\t", "\r", "\\", "\""
// and "\x1b" for what it consists of. Texts between quotes that need none mean themselves, so
// texts of other programs are read as they are.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Whether a text means something else when it stands as it is.
using PFN_HasMeaning = bool (*)(std::string_view text);

std::string OnOneLine(std::string_view text, PFN_HasMeaning pfnHasMeaning);
// What OnOneLine was given.
std::string FromOneLine(std::string_view line, PFN_HasMeaning pfnHasMeaning);

}  // namespace tool
