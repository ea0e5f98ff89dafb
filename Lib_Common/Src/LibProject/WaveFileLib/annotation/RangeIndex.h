// SPDX-License-Identifier: Apache-2.0
//
// Finds the ranges of a list that an added range can merge with, without looking at all of them:
// 100,000 segments that are added and merged one by one take time in proportion to their number.
//
// Most lists hold ranges of which no two meet, because ranges that meet are merged. A merge may
// leave some that still meet, see MergeSampleRanges; these few are kept apart and are looked at
// each time.
#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "annotation/SampleRangeMerge.h"

namespace vcm {

// Knows the ranges of a list by their positions, 0 for the first.
class C_RangeIndex {
 public:
  // Knows these ranges instead of those before; nothing when too many of them meet.
  void Learn(const std::vector<S_SampleRange>& ranges);
  void Forget();
  [[nodiscard]] bool IsKnown() const { return m_bKnown; }
  [[nodiscard]] std::size_t Size() const { return m_members.size(); }

  // The positions, ascending, of all ranges that play a part when this one is appended and the list
  // is merged. Merging these in their order gives what merging the whole list would give.
  [[nodiscard]] std::vector<std::size_t> Affected(const S_SampleRange& range) const;

  // Appends a range that affects no other.
  void Append(const S_SampleRange& range);
  // What a merge made of the ranges at these positions; those marked as removed are gone, and the
  // others move up. A position of Size() stands for a range that was appended.
  void Replace(const std::vector<std::size_t>& positions, const std::vector<S_SampleRange>& ranges);

 private:
  struct S_Member {
    S_SampleRange range;
    std::size_t nNumber;  // ascending, and never changed by what happens to other members
  };
  struct S_Apart {
    unsigned int dwEnd;
    std::size_t nNumber;
  };

  [[nodiscard]] std::size_t PositionOf(std::size_t nNumber) const;
  [[nodiscard]] std::vector<std::size_t> ApartOnesThatMeet(const S_SampleRange& range) const;
  void Sort(const S_Member& member);
  void Drop(const S_Member& member);

  bool m_bKnown = false;
  std::size_t m_nNextNumber = 0;
  std::vector<S_Member> m_members;          // as in the list
  std::map<unsigned int, S_Apart> m_apart;  // by start: those that meet no other
  std::vector<S_Member> m_crowded;          // those that meet others or end before their start
};

}  // namespace vcm
