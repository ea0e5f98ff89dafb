// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <vector>

#include "picture/Lettering.h"
#include "plot/Marks.h"

namespace tool {

// Where the name of a mark stands: at its right, or at its left near the end of the picture.
struct S_PlacedName {
  std::size_t nMark = 0;  // index in S_Marks::marks
  int nRow = 0;           // counted from the top
  double dX = 0.0;        // of its first letter, from the first column
  std::string strText;
};

struct S_MarkNames {
  std::vector<S_PlacedName> names;
  int nRows = 0;
  std::array<std::size_t, MARK_KINDS> counts{};  // of those that are placed
};

// Places as many names as fit beside and below each other without touching. A line goes down from
// each name to its mark, and no line goes through a name.
S_MarkNames PlaceNames(const S_Marks& marks, const C_Lettering& lettering, double dWidth,
                       double dSize, int nMostRows);

}  // namespace tool
