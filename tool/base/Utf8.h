// SPDX-License-Identifier: Apache-2.0
//
// Texts in files are bytes of any kind. What people and other programs see of them is UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tool {

[[nodiscard]] bool IsUtf8(std::string_view text) noexcept;

// A text of UTF-8 as it is, and any other as what its bytes are in Windows-1252.
std::string AsUtf8(std::string_view text);

// A text for a terminal: control characters, and bytes that belong to no character, are shown as
// "\n", "\t" or "\x1b", so that they can do nothing there.
std::string Printable(std::string_view text);

}  // namespace tool
