// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The lines of a text, broken at spaces so that none is longer than nColumns where its words allow
// it. Line ends stay.
std::vector<std::string> WrappedLines(std::string_view text, std::size_t nColumns);

// The same as one text, each line after nIndent spaces.
std::string WrappedText(std::string_view text, std::size_t nColumns, std::size_t nIndent);

}  // namespace tool
