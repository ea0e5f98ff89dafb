// SPDX-License-Identifier: Apache-2.0
#include "annotation/RangeIndex.h"

#include <algorithm>
#include <iterator>

namespace vcm {
namespace {

// Lists with more ranges that meet are merged as a whole. A few such merges leave less of them.
constexpr std::size_t kMostCrowded = 64;

bool IsInverted(const S_SampleRange& range) { return range.dwEnd < range.dwStart; }

bool Meet(const S_SampleRange& one, const S_SampleRange& other) {
  return one.Holds(other.dwStart) || other.Holds(one.dwStart);
}

}  // namespace

void C_RangeIndex::Learn(const std::vector<S_SampleRange>& ranges) {
  Forget();
  m_bKnown = true;
  for (const S_SampleRange& range : ranges) {
    Append(range);
    if (!m_bKnown) return;
  }
}

void C_RangeIndex::Forget() {
  m_bKnown = false;
  m_numbers.clear();
  m_ranges.clear();
  m_apart.clear();
  m_inverted.clear();
  m_crowded.clear();
}

std::size_t C_RangeIndex::PositionOf(std::size_t nNumber) const {
  // Not lower_bound: where the standard library checks its arguments, it looks at all numbers to
  // see whether they ascend.
  const auto found = std::partition_point(m_numbers.begin(), m_numbers.end(),
                                          [=](std::size_t nOther) { return nOther < nNumber; });
  const bool bFound = found != m_numbers.end() && *found == nNumber;
  return bFound ? static_cast<std::size_t>(found - m_numbers.begin()) : Size();
}

std::vector<std::size_t> C_RangeIndex::Affected(const S_SampleRange& range) const {
  std::vector<std::size_t> positions;
  for (const std::size_t nNumber : ApartOnesThatMeet(range)) {
    positions.push_back(PositionOf(nNumber));
  }
  for (const std::size_t nNumber : m_crowded) positions.push_back(PositionOf(nNumber));
  // A merge may take its turn from the range that comes next.
  const std::size_t nMeeting = positions.size();
  for (std::size_t i = 0; i < nMeeting; ++i) {
    if (positions[i] + 1 < Size()) positions.push_back(positions[i] + 1);
  }
  std::sort(positions.begin(), positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  return positions;
}

void C_RangeIndex::Append(const S_SampleRange& range) {
  m_numbers.push_back(NextNumber());
  m_ranges.push_back(range);
  Enter(m_numbers.back());
}

void C_RangeIndex::Change(std::size_t nPosition, const S_SampleRange& range) {
  const std::size_t nNumber = NumberAt(nPosition);
  Leave(nNumber);
  m_ranges[nNumber] = range;
  Enter(nNumber);
}

void C_RangeIndex::Replace(const std::vector<std::size_t>& positions,
                           const std::vector<S_SampleRange>& ranges) {
  for (const std::size_t nPosition : positions) Leave(NumberAt(nPosition));
  for (std::size_t i = 0; i < positions.size() && m_bKnown; ++i) {
    if (ranges[i].bRemoved) continue;
    m_ranges[NumberAt(positions[i])] = ranges[i];
    Enter(NumberAt(positions[i]));
  }
  if (!m_bKnown) return;
  if (m_crowded.empty()) m_crowded.shrink_to_fit();
  for (std::size_t i = positions.size(); i-- > 0;) {
    if (!ranges[i].bRemoved) continue;
    m_numbers.erase(m_numbers.begin() + static_cast<std::ptrdiff_t>(positions[i]));
  }
}

std::vector<std::size_t> C_RangeIndex::ApartOnesThatMeet(const S_SampleRange& range) const {
  std::vector<std::size_t> numbers;
  auto it = m_apart.lower_bound(range.dwStart);
  if (it != m_apart.begin() && m_ranges[std::prev(it)->second].dwEnd >= range.dwStart) --it;
  const unsigned int dwLast = std::max(range.dwStart, range.dwEnd);
  for (; it != m_apart.end() && it->first <= dwLast; ++it) {
    if (Meet(range, m_ranges[it->second])) numbers.push_back(it->second);
  }
  if (IsInverted(range)) return numbers;
  for (auto inverted = m_inverted.lower_bound({range.dwStart, 0});
       inverted != m_inverted.end() && inverted->first <= range.dwEnd; ++inverted) {
    numbers.push_back(inverted->second);
  }
  return numbers;
}

// Puts a range where it belongs, and those that it meets with the crowded ones.
void C_RangeIndex::Enter(std::size_t nNumber) {
  const S_SampleRange& range = m_ranges[nNumber];
  const auto meeting = ApartOnesThatMeet(range);
  const bool bCrowded = !meeting.empty() || std::ranges::any_of(m_crowded, [&](std::size_t nOther) {
    return Meet(range, m_ranges[nOther]);
  });
  for (const std::size_t nOther : meeting) SetApart(nOther, false);
  m_crowded.insert(m_crowded.end(), meeting.begin(), meeting.end());
  if (bCrowded) {
    m_crowded.push_back(nNumber);
  } else {
    SetApart(nNumber, true);
  }
  if (m_crowded.size() > kMostCrowded) Forget();
}

// Those that the range has met stay with the crowded ones. The next merge looks at them.
void C_RangeIndex::Leave(std::size_t nNumber) {
  if (std::erase(m_crowded, nNumber) == 0) SetApart(nNumber, false);
}

void C_RangeIndex::SetApart(std::size_t nNumber, bool bApart) {
  const S_SampleRange& range = m_ranges[nNumber];
  if (IsInverted(range)) {
    if (bApart) m_inverted.emplace(range.dwStart, nNumber);
    if (!bApart) m_inverted.erase({range.dwStart, nNumber});
  } else {
    if (bApart) m_apart.emplace(range.dwStart, nNumber);
    if (!bApart) m_apart.erase(range.dwStart);
  }
}

}  // namespace vcm
