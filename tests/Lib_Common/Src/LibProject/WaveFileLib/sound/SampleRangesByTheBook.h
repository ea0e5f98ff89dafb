// SPDX-License-Identifier: Apache-2.0
//
// What the tests of silence segments and regions share.
#pragma once

#include <utility>
#include <vector>

#include "sound/WavData.h"

using C_Ranges = std::vector<std::pair<unsigned int, unsigned int>>;
using C_SegmentArray = C_CLArray<C_SilenceSegment*, I_SilenceSegment*, true>;
using C_RegionArray = C_CLArray<C_UncompressRegion*, I_UncompressRegion*, true>;

// The rule for merging, word by word.
inline C_Ranges MergedByTheBook(C_Ranges items) {
  for (int i = 0; i < static_cast<int>(items.size()); ++i) {
    auto& a = items[static_cast<std::size_t>(i)];
    for (int j = 0; j < static_cast<int>(items.size()); ++j) {
      if (j == i) continue;
      auto& b = items[static_cast<std::size_t>(j)];
      if (a.first <= b.first && b.first <= a.second) {
        if (b.second > a.second) a.second = b.second;
        items.erase(items.begin() + j);
        break;
      }
      if (b.first <= a.first && a.first <= b.second) {
        if (a.second > b.second) b.second = a.second;
        if (i < j) {
          a = b;
          items.erase(items.begin() + j);
        } else {
          items.erase(items.begin() + i);
          --i;
        }
        break;
      }
    }
  }
  return items;
}
