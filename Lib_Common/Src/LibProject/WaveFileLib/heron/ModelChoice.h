// SPDX-License-Identifier: Apache-2.0
//
// Chooses the model (Neighbourhood.h) that a part is coded with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Neighbourhood.h"

namespace heron {

class C_ModelChoice {
 public:
  // nLength: coefficients of the longest part.
  explicit C_ModelChoice(std::size_t nLength);

  // Begins the part of 2^nSize units in before, with the model that promises to take fewer bits for
  // these coefficients (Q8) at step index nIndex. True when this is the steady one.
  bool Begin(std::span<const std::int32_t> coefficients, int nIndex, std::size_t nSize,
             C_PartsBefore& before) noexcept;

 private:
  std::vector<std::int32_t> m_levels;
  std::vector<std::uint32_t> m_below;
};

}  // namespace heron
