// SPDX-License-Identifier: Apache-2.0
//
// The merging rule of silence segments and uncompressed regions, on bare ranges.
#pragma once

#include <vector>

// Samples dwStart to dwEnd, both inclusive. An end before the start holds no sample.
struct S_SampleRange {
  unsigned int dwStart = 0;
  unsigned int dwEnd = 0;
  bool bRemoved = false;  // was merged into another one

  bool Holds(unsigned int dwSample) const { return dwStart <= dwSample && dwSample <= dwEnd; }
};

// Merges ranges that share a sample, in place; positions stay, and merged ones are marked removed.
//
// Kept: one pass with at most one merge for each range, so that a range which meets several others
// may leave some of them apart; never sorted; ranges that only touch stay apart. Files hold lists
// made this way and are compared with them. Pinned by Merge_IsOnePassWithOneMergeForEachItem.
//
// The time grows with the ranges that hang together by overlaps, not with the square of the count:
// a list from a file may hold 100,000 that lie apart, which would take most of a minute to compare
// with one another each time that a segment is added.
void MergeSampleRanges(std::vector<S_SampleRange>& ranges);

// The samples that the ranges cover, as ascending ranges that neither overlap nor touch.
std::vector<S_SampleRange> UnionOfSampleRanges(std::vector<S_SampleRange> ranges);
