// SPDX-License-Identifier: Apache-2.0
//
// Remembers ranges of which no two meet. With it, a range that meets none of them is added without
// looking at all of them: 100,000 segments that are added one by one take linear time.
#pragma once

#include <map>
#include <vector>

#include "annotation/SampleRangeMerge.h"

namespace vcm {

class C_ApartRanges {
 public:
  // Remembers these ranges instead of those before. Remembers nothing when two of them meet, or
  // when one ends before its start.
  void Learn(const std::vector<S_SampleRange>& ranges);
  void Forget();
  // True when the range meets none of the others. It is then remembered, too. False when ranges
  // meet, when the range ends before its start, and when nothing is known.
  [[nodiscard]] bool Add(const S_SampleRange& range);

 private:
  [[nodiscard]] bool Meets(const S_SampleRange& range) const;

  bool m_bKnown = false;
  std::map<unsigned int, unsigned int> m_endByStart;
};

}  // namespace vcm
