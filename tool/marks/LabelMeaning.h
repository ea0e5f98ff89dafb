// SPDX-License-Identifier: Apache-2.0
//
// What the text of a line of a label track (LabelText.h) stands for.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/JsonText.h"

namespace tool {

// As words in brackets: LabelTag("event", {3, 5}) is "[event 3/5]".
std::string LabelTag(const std::string& strKind, std::initializer_list<std::uint64_t> numbers = {});

struct S_LabelMeaning {
  std::string strKind;  // of a row; "cue" for a text without a tag
  std::array<std::uint64_t, 3> numbers{};
  std::string strText;  // what follows the tag; all of a text without one
  bool bHasText = false;
};

S_LabelMeaning MeaningOfLabel(std::string_view line);

// A text for a line: after a tag, or alone.
std::string LabelLineText(std::string_view text);

}  // namespace tool
