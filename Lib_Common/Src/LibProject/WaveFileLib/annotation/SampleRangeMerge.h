// SPDX-License-Identifier: Apache-2.0
//
// The rule for merging silence segments and uncompressed regions, on bare ranges.
#pragma once

#include <vector>

namespace vcm {

// Samples dwStart to dwEnd, both inclusive. A range whose end is before its start holds no samples.
struct S_SampleRange {
  unsigned int dwStart = 0;
  unsigned int dwEnd = 0;
  bool bRemoved = false;  // was merged into another range

  bool Holds(unsigned int dwSample) const { return dwStart <= dwSample && dwSample <= dwEnd; }
};

// Merges ranges that share a sample, in place. Ranges keep their positions in the vector; those
// that were merged into another one are marked as removed.
//
// Kept: there is only one pass with at most one merge for each range, so a range that meets several
// others may leave some of them unmerged. Ranges are never sorted, and ranges that only touch stay
// separate. Files hold lists made this way and are compared with them. Pinned by
// Merge_IsOnePassWithOneMergeForEachItem.
//
// The time depends on how many ranges are linked by overlaps, not on the square of the count. A
// list from a file may hold 100,000 separate ranges. Comparing each of them with all the others
// would take most of a minute every time a segment is added.
void MergeSampleRanges(std::vector<S_SampleRange>& ranges);

// The samples that the ranges cover, as ascending ranges that neither overlap nor touch.
std::vector<S_SampleRange> UnionOfSampleRanges(std::vector<S_SampleRange> ranges);

}  // namespace vcm
