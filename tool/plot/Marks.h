// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "measure/Columns.h"
#include "voxplay.hpp"

namespace tool {

enum tagMarkKind { MARK_EVENT, MARK_CUE, MARK_KINDS };
enum tagRangeKind { RANGE_SILENCE, RANGE_REGION, RANGE_LOOP, RANGE_TEXT, RANGE_KINDS };

struct S_Mark {
  int nColumn = 0;
  std::uint64_t qwFrame = 0;
  tagMarkKind eKind = MARK_EVENT;
  std::string strName;  // as CleanText gives it
};

// Columns from nFirst to before nEnd.
struct S_Run {
  int nFirst = 0;
  int nEnd = 0;
};

// The notes of a sound as far as a picture shows them. However many there are: a column has one
// mark at most, the first of its events or else of its cue points.
struct S_Marks {
  std::vector<S_Mark> marks;                     // in order of their columns
  std::array<std::size_t, MARK_KINDS> counts{};  // of all marks in the picture
  std::array<std::vector<S_Run>, RANGE_KINDS> ranges;

  // Whether lines through the whole picture would hide it.
  [[nodiscard]] bool AreCrowded(int nColumns) const noexcept {
    constexpr int kColumnsPerLine = 12;
    return static_cast<int>(marks.size()) > nColumns / kColumnsPerLine;
  }
};

// Of the frames that the columns show, and of the place after the last of them; the first is frame
// qwFirst of the sound. The container (voxplay_container) tells which labels read as events.
S_Marks MarksOf(const voxplay::NotesView& notes, std::uint32_t dwContainer, std::uint64_t qwFirst,
                const C_Columns& columns);

}  // namespace tool
