// SPDX-License-Identifier: Apache-2.0
//
// The encoder's search for the levels of a frame. It finds the path through the state machine of
// Quantiser.h that costs least in distortion and bits together.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Neighbourhood.h"
#include "heron/Quantiser.h"

namespace heron {

class C_Trellis {
 public:
  // nLength: coefficients per frame.
  explicit C_Trellis(int nLength);

  // Sets levels[k] to the level of |coefficients[k]| (Q8). before must have begun this frame with
  // nIndex. All spans have the length of one frame.
  void Search(std::span<const std::int32_t> coefficients, int nIndex, const C_PreviousFrame& before,
              std::span<std::int32_t> levels) noexcept;

 private:
  // The best path that ends in a state.
  struct S_Path {
    std::uint64_t qwCost;
    S_Below below;
  };
  using S_Paths = std::array<S_Path, kStates>;
  struct S_Choice {
    std::int32_t nLevel;
    std::uint8_t byFrom;  // the previous state
  };
  using S_Choices = std::array<S_Choice, kStates>;

  static void Extend(const S_Paths& paths, std::int64_t nScaled, std::uint32_t nExpectation,
                     S_Paths& next, S_Choices& choices) noexcept;

  std::vector<S_Choices> m_choices;  // for each coefficient, by the state after it
};

}  // namespace heron
