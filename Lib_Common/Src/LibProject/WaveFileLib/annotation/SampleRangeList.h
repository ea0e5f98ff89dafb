// SPDX-License-Identifier: Apache-2.0
//
// The operations that lists of silence segments and lists of uncompressed regions share. List is a
// C_CLArray that owns its items. Null items are skipped; callers can only put them there through
// the array itself.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "CLArray.h"
#include "annotation/SampleRangeMerge.h"

namespace vcm {

template <typename List>
using ItemOf = std::remove_pointer_t<decltype(std::declval<const List&>().GetAt(0))>;

template <typename List>
void AppendRange(List& list, unsigned int dwStart, unsigned int dwEnd) {
  AddOwned(list, std::make_unique<ItemOf<List>>(dwStart, dwEnd));
}

template <typename List>
void MergeItems(List& list) {
  std::vector<S_SampleRange> ranges;
  std::vector<ItemOf<List>*> items;
  for (int i = 0; i < list.GetCount(); ++i) {
    if (auto* const pItem = list.GetAt(i)) {
      items.push_back(pItem);
      ranges.push_back({pItem->GetStartSamplePos(), pItem->GetEndSamplePos()});
    }
  }
  MergeSampleRanges(ranges);
  for (std::size_t i = 0; i < items.size(); ++i) {
    items[i]->SetStartSamplePos(ranges[i].dwStart);
    items[i]->SetEndSamplePos(ranges[i].dwEnd);
  }
  std::size_t nRange = 0;
  KeepIf(list, [&](const auto* pItem) { return pItem == nullptr || !ranges[nRange++].bRemoved; });
}

// Replaces the items with copies of those in another list.
template <typename List, typename Source>
void CopyItems(List& list, const Source* pSource) {
  list.RemoveAll();
  if (pSource == nullptr) return;
  for (int i = 0; i < pSource->GetSize(); ++i) {
    auto* const pItem = pSource->GetItemByIndex(i);
    if (pItem != nullptr) AppendRange(list, pItem->GetStartSamplePos(), pItem->GetEndSamplePos());
  }
}

}  // namespace vcm
