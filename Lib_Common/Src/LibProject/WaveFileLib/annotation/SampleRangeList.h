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
#include "annotation/ApartRanges.h"
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

// A list of ranges that belongs to a sound.
template <typename Item, typename Interface>
class C_SampleRangeList : public C_CLArray<Item*, Interface*, true> {
  using Base = C_CLArray<Item*, Interface*, true>;

 public:
  void RemoveItemByIndex(int nIndex) override {
    m_bChanged = true;
    Base::RemoveItemByIndex(nIndex);
  }
  void RemoveAll() override {
    m_bChanged = true;
    Base::RemoveAll();
  }

  void Merge() {
    m_bChanged = true;
    MergeItems(*this);
  }
  // Appends a range and merges the list. A range that meets no other needs no merge, and that is
  // known without looking at all ranges, as long as the list was filled in this way.
  void AppendAndMerge(unsigned int dwStart, unsigned int dwEnd) {
    const bool bAlone = IsKnown() && m_apart.Add({dwStart, dwEnd});
    AppendRange(*this, dwStart, dwEnd);
    if (bAlone) {
      this->GetAt(m_nKnown++)->ReportChangesTo(&m_bChanged);
    } else {
      MergeItems(*this);
      Learn();
    }
  }

 private:
  // Callers change items and remove them, which m_bChanged tells; other code of ours adds items.
  [[nodiscard]] bool IsKnown() const { return !m_bChanged && m_nKnown == this->GetCount(); }
  void Learn() {
    std::vector<S_SampleRange> ranges;
    for (int i = 0; i < this->GetCount(); ++i) {
      Item* const pItem = this->GetAt(i);
      if (pItem == nullptr) continue;
      pItem->ReportChangesTo(&m_bChanged);
      ranges.push_back({pItem->GetStartSamplePos(), pItem->GetEndSamplePos()});
    }
    m_apart.Learn(ranges);
    m_nKnown = this->GetCount();
    m_bChanged = false;
  }

  C_ApartRanges m_apart;
  int m_nKnown = 0;        // how many items there were when m_apart was up to date
  bool m_bChanged = true;  // since then
};

}  // namespace vcm
