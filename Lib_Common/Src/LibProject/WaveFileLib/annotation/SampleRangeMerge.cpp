// SPDX-License-Identifier: Apache-2.0
#include "annotation/SampleRangeMerge.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>

namespace vcm {
namespace {

// The last position at which a range can meet another one. A range without samples still meets the
// ranges that hold its start.
unsigned int LastPosition(const S_SampleRange& range) {
  return std::max(range.dwStart, range.dwEnd);
}

std::vector<std::size_t> IndexesByStart(const std::vector<S_SampleRange>& ranges) {
  std::vector<std::size_t> indexes(ranges.size());
  std::iota(indexes.begin(), indexes.end(), std::size_t{0});
  std::sort(indexes.begin(), indexes.end(),
            [&](std::size_t a, std::size_t b) { return ranges[a].dwStart < ranges[b].dwStart; });
  return indexes;
}

constexpr std::size_t kNone = SIZE_MAX;

// Ranges in different groups never meet, however they merge, because merging stays inside the
// stretch that a group covers. The members of a group are linked in their original order.
class C_RangeGroups {
 public:
  explicit C_RangeGroups(const std::vector<S_SampleRange>& ranges)
      : m_groupOf(ranges.size()), m_next(ranges.size(), kNone), m_previous(ranges.size(), kNone) {
    std::uint64_t qwCoveredTo = 0;  // one past the last position of the current group
    for (const std::size_t nIndex : IndexesByStart(ranges)) {
      if (m_first.empty() || ranges[nIndex].dwStart >= qwCoveredTo) m_first.push_back(kNone);
      qwCoveredTo = std::max<std::uint64_t>(qwCoveredTo, LastPosition(ranges[nIndex]) + 1ULL);
      m_groupOf[nIndex] = m_first.size() - 1;
    }
    for (std::size_t i = ranges.size(); i-- > 0;) LinkFirst(i);
  }

  std::size_t FirstWith(std::size_t nIndex) const { return m_first[m_groupOf[nIndex]]; }
  std::size_t Next(std::size_t nIndex) const { return m_next[nIndex]; }

  void Remove(std::size_t nIndex) {
    const std::size_t nPrevious = m_previous[nIndex];
    const std::size_t nNext = m_next[nIndex];
    (nPrevious == kNone ? m_first[m_groupOf[nIndex]] : m_next[nPrevious]) = nNext;
    if (nNext != kNone) m_previous[nNext] = nPrevious;
  }

 private:
  void LinkFirst(std::size_t nIndex) {
    std::size_t& nFirst = m_first[m_groupOf[nIndex]];
    m_next[nIndex] = nFirst;
    if (nFirst != kNone) m_previous[nFirst] = nIndex;
    nFirst = nIndex;
  }

  std::vector<std::size_t> m_groupOf;
  std::vector<std::size_t> m_first;  // first range of each group
  std::vector<std::size_t> m_next;
  std::vector<std::size_t> m_previous;
};

std::size_t NextHeld(const std::vector<S_SampleRange>& ranges, std::size_t nIndex) {
  do {
    ++nIndex;
  } while (nIndex < ranges.size() && ranges[nIndex].bRemoved);
  return nIndex;
}

// Gives range i its turn: merges it with the first range of its group that it meets. Returns the
// index of the range that is no longer needed, or kNone when range i meets no other.
std::size_t MergeOne(std::vector<S_SampleRange>& ranges, const C_RangeGroups& groups,
                     std::size_t i) {
  S_SampleRange& a = ranges[i];
  for (std::size_t j = groups.FirstWith(i); j != kNone; j = groups.Next(j)) {
    if (j == i) continue;
    S_SampleRange& b = ranges[j];
    if (a.Holds(b.dwStart)) {
      a.dwEnd = std::max(a.dwEnd, b.dwEnd);
      return j;
    }
    if (b.Holds(a.dwStart)) {
      b.dwEnd = std::max(a.dwEnd, b.dwEnd);
      if (i > j) return i;
      a = b;
      return j;
    }
  }
  return kNone;
}

}  // namespace

void MergeSampleRanges(std::vector<S_SampleRange>& ranges) {
  C_RangeGroups groups(ranges);
  for (std::size_t i = 0; i < ranges.size();) {
    const std::size_t nNext = NextHeld(ranges, i);
    const std::size_t nRemoved = MergeOne(ranges, groups, i);
    if (nRemoved == kNone) {
      i = nNext;
      continue;
    }
    ranges[nRemoved].bRemoved = true;
    groups.Remove(nRemoved);
    // When a range before the current one is removed, the ranges after it count as moved forward by
    // one. The range that would come next therefore loses its turn.
    i = NextHeld(ranges, nRemoved < i ? nNext : i);
  }
}

std::vector<S_SampleRange> UnionOfSampleRanges(std::vector<S_SampleRange> ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const S_SampleRange& a, const S_SampleRange& b) { return a.dwStart < b.dwStart; });
  std::vector<S_SampleRange> covered;
  for (const S_SampleRange& range : ranges) {
    if (range.dwEnd < range.dwStart) continue;
    if (covered.empty() || range.dwStart > std::uint64_t{covered.back().dwEnd} + 1U) {
      covered.push_back(range);
    } else {
      covered.back().dwEnd = std::max(covered.back().dwEnd, range.dwEnd);
    }
  }
  return covered;
}

}  // namespace vcm
