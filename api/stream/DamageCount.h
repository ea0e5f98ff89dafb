// SPDX-License-Identifier: Apache-2.0
//
// Counts the damaged frames of a sound, by the one rule of all streams: a frame counts when reading
// first goes beyond it. So frames that are read twice count once, and those before the furthest
// place that was read, over which a seek passed, do not count when they are read later.
#pragma once

#include <algorithm>
#include <cstdint>

namespace api {

class C_DamageCount {
 public:
  [[nodiscard]] std::uint64_t Frames() const noexcept { return m_qwDamaged; }

  // The frames from qwFrom up to qwTo were read.
  void Read(std::uint64_t qwFrom, std::uint64_t qwTo, bool bDamaged) noexcept {
    const std::uint64_t qwFirst = std::max(qwFrom, m_qwReadTo);
    if (qwTo <= qwFirst) return;
    if (bDamaged) m_qwDamaged += qwTo - qwFirst;
    m_qwReadTo = qwTo;
  }

 private:
  std::uint64_t m_qwDamaged = 0;
  std::uint64_t m_qwReadTo = 0;
};

}  // namespace api
