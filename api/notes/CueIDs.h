// SPDX-License-Identifier: Apache-2.0
//
// Sets of cue point identifiers. They are sorted rather than hashed, so that no choice of
// identifiers in a file makes the search slow.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace api {

class C_CueIDs {
 public:
  C_CueIDs() = default;
  explicit C_CueIDs(std::vector<std::uint32_t> ids) : m_ids(std::move(ids)) {
    std::sort(m_ids.begin(), m_ids.end());
    m_ids.erase(std::unique(m_ids.begin(), m_ids.end()), m_ids.end());
  }

  [[nodiscard]] bool Has(std::uint32_t dwID) const {
    return std::binary_search(m_ids.begin(), m_ids.end(), dwID);
  }
  // In ascending order.
  [[nodiscard]] const std::vector<std::uint32_t>& Sorted() const { return m_ids; }

 private:
  std::vector<std::uint32_t> m_ids;
};

// Hands out the identifiers from 1 on that are in none of the other makers' marks.
class C_FreeIDs {
 public:
  explicit C_FreeIDs(C_CueIDs taken) : m_taken(std::move(taken)) {}

  std::uint32_t Next() {
    const std::vector<std::uint32_t>& taken = m_taken.Sorted();
    while (m_nPassed < taken.size() && taken[m_nPassed] <= m_dwNext) {
      if (taken[m_nPassed++] == m_dwNext) ++m_dwNext;
    }
    return m_dwNext++;
  }

 private:
  C_CueIDs m_taken;
  std::size_t m_nPassed = 0;
  std::uint32_t m_dwNext = 1;
};

}  // namespace api
