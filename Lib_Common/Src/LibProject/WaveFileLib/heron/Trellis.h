// SPDX-License-Identifier: Apache-2.0
//
// The encoder's search for the levels of a part. It finds the path through the state machine of
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
  // nLength: coefficients of the longest part.
  explicit C_Trellis(std::size_t nLength);

  // Sets levels[k] to the level of |coefficients[k]| (Q8), coded by the near or by the steady model.
  // before must have begun this part with nIndex. All spans have the same length. Returns the
  // cost: squared half steps, and bits at their price, in Q16.
  std::uint64_t Search(bool bSteady, std::span<const std::int32_t> coefficients, int nIndex,
                       const C_PartsBefore& before, std::span<std::int32_t> levels) noexcept;

 private:
  // The best path that ends in a state. T_Below is C_NearBelow or C_SteadyBelow.
  template <typename T_Below>
  struct S_Path {
    std::uint64_t qwCost;
    T_Below below;
  };
  template <typename T_Below>
  using S_Paths = std::array<S_Path<T_Below>, kStates>;
  struct S_Choice {
    std::int32_t nLevel;
    std::uint8_t byFrom;  // the previous state
  };
  using S_Choices = std::array<S_Choice, kStates>;

  template <typename T_Below>
  static void Extend(const S_Paths<T_Below>& paths, std::int64_t nScaled,
                     std::uint32_t nExpectation, S_Paths<T_Below>& next,
                     S_Choices& choices) noexcept;
  template <typename T_Below>
  std::uint64_t SearchBy(std::span<const std::int32_t> coefficients, int nIndex,
                         const C_PartsBefore& before, std::span<std::int32_t> levels) noexcept;

  std::vector<S_Choices> m_choices;  // for each coefficient, by the state after it
};

}  // namespace heron
