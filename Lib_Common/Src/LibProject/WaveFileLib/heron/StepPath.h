// SPDX-License-Identifier: Apache-2.0
//
// Chooses the step indices of the parts of a block.
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
// lost where an index is not the one that the part would like. One index per part.
std::vector<int> ChooseSteps(std::span<const S_StepWish> wishes);

}  // namespace heron
