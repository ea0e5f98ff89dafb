// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace tool {

// Members keep the order in which they were added.
using C_Json = nlohmann::ordered_json;

// What every record that the commands print says first: programs look here to see whether they
// know its members.
inline constexpr int kJsonSchema = 1;

// With a line for each member, or all on one line. Bytes that are no UTF-8 become U+FFFD. Where
// names of files have such bytes ("file", "source" and "target"), another member ("file_bytes") has
// all bytes of the name in hexadecimal.
std::string JsonText(const C_Json& json);
std::string JsonLine(const C_Json& json);
// The same as JsonText, as it stands in an array, and without a line end after it.
std::string JsonElement(const C_Json& json);

}  // namespace tool
