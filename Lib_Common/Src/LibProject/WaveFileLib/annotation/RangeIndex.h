// SPDX-License-Identifier: Apache-2.0
//
// Finds the ranges of a list that an added range can merge with, without looking at all of them:
// 100,000 segments that are added and merged one by one take time in proportion to their number.
//
// Most lists hold ranges of which no two meet, because ranges that meet are merged. A merge may
// leave some that still meet, see MergeSampleRanges. These few are looked at each time.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "annotation/SampleRangeMerge.h"

namespace vcm {

// Knows the ranges of a list by their positions, 0 for the first, and by numbers, which ascend in
// the list and never change.
class C_RangeIndex {
 public:
  // Knows these ranges instead of those before; nothing when too many of them meet.
  void Learn(const std::vector<S_SampleRange>& ranges);
  void Forget();
  [[nodiscard]] bool IsKnown() const { return m_bKnown; }

  [[nodiscard]] std::size_t Size() const { return m_numbers.size(); }
  [[nodiscard]] std::size_t NumberAt(std::size_t nPosition) const { return m_numbers[nPosition]; }
  // Size() for a number that is not in the list.
  [[nodiscard]] std::size_t PositionOf(std::size_t nNumber) const;
  // The number that the next range will get.
  [[nodiscard]] std::size_t NextNumber() const { return m_ranges.size(); }

  // The positions, ascending, of all ranges that play a part when this one is appended and the list
  // is merged. Merging these in their order gives what merging the whole list would give.
  [[nodiscard]] std::vector<std::size_t> Affected(const S_SampleRange& range) const;

  void Append(const S_SampleRange& range);
  void Change(std::size_t nPosition, const S_SampleRange& range);
  // What a merge made of the ranges at these positions. Those marked as removed are gone, and the
  // others move up.
  void Replace(const std::vector<std::size_t>& positions, const std::vector<S_SampleRange>& ranges);

 private:
  [[nodiscard]] std::vector<std::size_t> ApartOnesThatMeet(const S_SampleRange& range) const;
  void Enter(std::size_t nNumber);
  void Leave(std::size_t nNumber);
  void SetApart(std::size_t nNumber, bool bApart);

  bool m_bKnown = false;
  std::vector<std::size_t> m_numbers;   // as in the list
  std::vector<S_SampleRange> m_ranges;  // by number, those that are gone too
  // Those that meet no other, by start. Those that end before their start may share one.
  std::map<unsigned int, std::size_t> m_apart;
  std::set<std::pair<unsigned int, std::size_t>> m_inverted;
  std::vector<std::size_t> m_crowded;  // those that meet others
};

}  // namespace vcm
