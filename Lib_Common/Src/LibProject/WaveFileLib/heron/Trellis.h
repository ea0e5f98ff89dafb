// SPDX-License-Identifier: Apache-2.0
//
// The encoder's search for the levels of a part. It finds the path through the state machine of
// Quantiser.h that costs least in distortion and bits together.
//
// An even level leads from each state to one state, an odd level to another:
//
//   state 0   even from 0, odd from 1       state 1   even from 2, odd from 3
//   state 2   odd from 0, even from 1       state 3   odd from 2, even from 3
//
// So each state has two offers: one from each of two states, with the even or the odd one of the
// two levels around the coefficient. The lower offer wins, and the first of two equal ones.
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
  // nLength: coefficients of the longest part.
  explicit C_Trellis(std::size_t nLength);

  // Sets levels[k] to the level of |coefficients[k]| (Q8), coded by the near or by the steady
  // model. before must have begun this part with nIndex. All spans have the same length.
  void Search(bool bSteady, std::span<const std::int32_t> coefficients, int nIndex,
              const C_PartsBefore& before, std::span<std::int32_t> levels) noexcept;

 private:
  // For each coefficient, by the state after it: four times the level, and the state before it.
  std::vector<std::array<std::uint32_t, kStates>> m_choices;
};

}  // namespace heron
