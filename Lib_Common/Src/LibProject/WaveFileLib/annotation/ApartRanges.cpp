// SPDX-License-Identifier: Apache-2.0
#include "annotation/ApartRanges.h"

#include <algorithm>
#include <iterator>

namespace vcm {

void C_ApartRanges::Learn(const std::vector<S_SampleRange>& ranges) {
  m_endByStart.clear();
  m_bKnown = true;
  if (!std::ranges::all_of(ranges, [this](const S_SampleRange& range) { return Add(range); })) {
    Forget();
  }
}

void C_ApartRanges::Forget() {
  m_bKnown = false;
  m_endByStart.clear();
}

bool C_ApartRanges::Add(const S_SampleRange& range) {
  if (!m_bKnown || range.dwEnd < range.dwStart || Meets(range)) return false;
  m_endByStart.emplace(range.dwStart, range.dwEnd);
  return true;
}

bool C_ApartRanges::Meets(const S_SampleRange& range) const {
  const auto next = m_endByStart.lower_bound(range.dwStart);
  if (next != m_endByStart.end() && next->first <= range.dwEnd) return true;
  return next != m_endByStart.begin() && std::prev(next)->second >= range.dwStart;
}

}  // namespace vcm
