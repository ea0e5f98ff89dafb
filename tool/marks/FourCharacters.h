// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tool {

// The identifier of a chunk: its four characters, or eight hexadecimal digits when some of them
// cannot be printed. pchID has four characters.
std::string FourCharacters(const char* pchID);
// The other way round; empty for a text that is neither.
std::optional<std::string> FromFourCharacters(std::string_view text);

// "6162" for "ab".
std::string HexText(std::string_view bytes);
std::optional<std::string> FromHexText(std::string_view text);

}  // namespace tool
