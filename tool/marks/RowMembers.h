// SPDX-License-Identifier: Apache-2.0
//
// The names of the members that rows of marks (MarkRows.h) may have, which are columns of a table.
#pragma once

#include <array>
#include <optional>
#include <string>

namespace tool {

// Those that every table has, and those that few rows have.
inline constexpr std::array kUsualMembers = {"kind",         "number",      "id",   "start",
                                             "time",         "length",      "name", "text",
                                             "main_command", "sub_command", "data"};
inline constexpr std::array kRareMembers = {
    "hex",           "chunk",   "chunk_start", "block_start", "position",
    "sample_offset", "purpose", "country",     "language",    "dialect",
    "code_page",     "last",    "type",        "fraction",    "play_count"};

// What is wrong with the name of a member that somebody has written, and what may have been meant:
// ""nmae" is unknown; did you mean "name"?". Empty for one that rows may have.
std::optional<std::string> UnknownMember(const std::string& strName);

}  // namespace tool
