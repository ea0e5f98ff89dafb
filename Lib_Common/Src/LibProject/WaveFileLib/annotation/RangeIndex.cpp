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
    m_members.push_back({range, m_nNextNumber++});
    Sort(m_members.back());
    if (!m_bKnown) return;
  }
}

void C_RangeIndex::Forget() {
  m_bKnown = false;
  m_members.clear();
  m_apart.clear();
  m_crowded.clear();
}

std::vector<std::size_t> C_RangeIndex::Affected(const S_SampleRange& range) const {
  std::vector<std::size_t> positions;
  for (const std::size_t nNumber : ApartOnesThatMeet(range)) {
    positions.push_back(PositionOf(nNumber));
  }
  for (const S_Member& member : m_crowded) positions.push_back(PositionOf(member.nNumber));
  // A merge may take its turn from the range that comes next.
  const std::size_t nMeeting = positions.size();
  for (std::size_t i = 0; i < nMeeting; ++i) {
    if (positions[i] + 1 < m_members.size()) positions.push_back(positions[i] + 1);
  }
  std::ranges::sort(positions);
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  return positions;
}

void C_RangeIndex::Append(const S_SampleRange& range) {
  m_members.push_back({range, m_nNextNumber++});
  Sort(m_members.back());
}

void C_RangeIndex::Replace(const std::vector<std::size_t>& positions,
                           const std::vector<S_SampleRange>& ranges) {
  for (const std::size_t nPosition : positions) {
    if (nPosition < m_members.size()) Drop(m_members[nPosition]);
  }
  std::vector<std::size_t> removed;
  for (std::size_t i = 0; i < positions.size() && m_bKnown; ++i) {
    const bool bAppended = positions[i] == m_members.size();
    if (ranges[i].bRemoved) {
      if (!bAppended) removed.push_back(positions[i]);
      continue;
    }
    if (bAppended) m_members.push_back({{}, m_nNextNumber++});
    m_members[positions[i]].range = ranges[i];
    Sort(m_members[positions[i]]);
  }
  if (!m_bKnown) return;
  for (auto it = removed.rbegin(); it != removed.rend(); ++it) {
    m_members.erase(m_members.begin() + static_cast<std::ptrdiff_t>(*it));
  }
}

std::size_t C_RangeIndex::PositionOf(std::size_t nNumber) const {
  const auto found = std::ranges::lower_bound(m_members, nNumber, {}, &S_Member::nNumber);
  return static_cast<std::size_t>(found - m_members.begin());
}

std::vector<std::size_t> C_RangeIndex::ApartOnesThatMeet(const S_SampleRange& range) const {
  std::vector<std::size_t> numbers;
  const unsigned int dwLast = std::max(range.dwStart, range.dwEnd);
  auto it = m_apart.lower_bound(range.dwStart);
  if (it != m_apart.begin() && std::prev(it)->second.dwEnd >= range.dwStart) --it;
  for (; it != m_apart.end() && it->first <= dwLast; ++it) {
    if (Meet(range, {it->first, it->second.dwEnd})) numbers.push_back(it->second.nNumber);
  }
  return numbers;
}

// Puts a new member, or one that has changed, where it belongs, and those that it meets with the
// crowded ones.
void C_RangeIndex::Sort(const S_Member& member) {
  const auto meeting = ApartOnesThatMeet(member.range);
  bool bCrowded = IsInverted(member.range) || !meeting.empty();
  for (const S_Member& other : m_crowded) bCrowded |= Meet(member.range, other.range);
  for (const std::size_t nNumber : meeting) {
    const S_Member other = m_members[PositionOf(nNumber)];
    m_apart.erase(other.range.dwStart);
    m_crowded.push_back(other);
  }
  if (bCrowded) {
    m_crowded.push_back(member);
  } else {
    m_apart.emplace(member.range.dwStart, S_Apart{member.range.dwEnd, member.nNumber});
  }
  if (m_crowded.size() > kMostCrowded) Forget();
}

void C_RangeIndex::Drop(const S_Member& member) {
  const auto isSame = [&](const S_Member& other) { return other.nNumber == member.nNumber; };
  if (std::erase_if(m_crowded, isSame) == 0) m_apart.erase(member.range.dwStart);
}

}  // namespace vcm
