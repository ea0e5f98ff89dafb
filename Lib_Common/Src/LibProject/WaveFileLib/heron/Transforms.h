// SPDX-License-Identifier: Apache-2.0
//
// The transforms and the overlaps for parts of every size, at one sample rate.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "heron/Configuration.h"
#include "heron/Dct4.h"
#include "heron/Lapping.h"
#include "heron/PartSyntax.h"

namespace heron {

class C_Transforms {
 public:
  explicit C_Transforms(std::size_t nUnitLength) : m_nUnitLength(nUnitLength) {
    for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
      const std::size_t nLength = nUnitLength << nSize;
      m_dcts.emplace_back(nLength);
      m_laps.push_back(MakeLaps(nLength / 2));
    }
  }

  [[nodiscard]] std::size_t UnitLength() const noexcept { return m_nUnitLength; }
  // For parts of 2^nSize units.
  [[nodiscard]] C_Dct4& Dct(std::size_t nSize) noexcept { return m_dcts[nSize]; }
  // The overlap of two neighbours, the smaller of which has 2^nSize units.
  [[nodiscard]] std::span<const S_Lap> Laps(std::size_t nSize) const noexcept {
    return m_laps[nSize];
  }
  // The overlap of two neighbours; empty when one of them is plain.
  [[nodiscard]] std::span<const S_Lap> Between(const S_Part& a, const S_Part& b) const noexcept {
    if (a.kind == E_PartKind::kPlain || b.kind == E_PartKind::kPlain) return {};
    return Laps(std::min(a.nSize, b.nSize));
  }

 private:
  std::size_t m_nUnitLength;
  std::vector<C_Dct4> m_dcts;
  std::vector<std::vector<S_Lap>> m_laps;
};

}  // namespace heron
