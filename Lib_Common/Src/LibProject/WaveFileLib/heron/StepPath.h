// SPDX-License-Identifier: Apache-2.0
//
// Chooses the step indices of parts that follow each other.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace heron {

// What one part would like.
struct S_StepWish {
  int nIndex;           // step index, Q8; may lie outside 0..kSteps-1
  std::size_t nLength;  // coefficients
};

// The path of step indices that costs least: what its differences take in the stream, and what is
// lost where an index is not the one that the part would like. One index per part. nBefore is the
// index that the first one is coded relative to, -1 for none.
std::vector<int> ChooseSteps(std::span<const S_StepWish> wishes, int nBefore);

}  // namespace heron
