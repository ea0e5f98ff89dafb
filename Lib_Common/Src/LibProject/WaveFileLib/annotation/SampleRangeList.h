// SPDX-License-Identifier: Apache-2.0
//
// The operations that lists of silence segments and lists of uncompressed regions share. List is a
// C_CLArray that owns its items. Null items are skipped; callers can only put them there through
// the array itself.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "CLArray.h"
#include "annotation/RangeIndex.h"
#include "annotation/SampleRangeMerge.h"

namespace vcm {

template <typename List>
using ItemOf = std::remove_pointer_t<decltype(std::declval<const List&>().GetAt(0))>;

template <typename List>
void AppendRange(List& list, unsigned int dwStart, unsigned int dwEnd) {
  AddOwned(list, std::make_unique<ItemOf<List>>(dwStart, dwEnd));
}

template <typename List>
S_SampleRange RangeAt(const List& list, std::size_t nPosition) {
  auto* const pItem = list.GetAt(static_cast<int>(nPosition));
  return {pItem->GetStartSamplePos(), pItem->GetEndSamplePos()};
}

// The positions of all items that are not null.
template <typename List>
std::vector<std::size_t> PositionsIn(const List& list) {
  std::vector<std::size_t> positions;
  for (int i = 0; i < list.GetCount(); ++i) {
    if (list.GetAt(i) != nullptr) positions.push_back(static_cast<std::size_t>(i));
  }
  return positions;
}

// Merges the items at these ascending positions, and returns what became of their ranges. Items
// that were merged into others are still there.
template <typename List>
std::vector<S_SampleRange> MergeItemsAt(List& list, const std::vector<std::size_t>& positions) {
  std::vector<S_SampleRange> ranges;
  ranges.reserve(positions.size());
  for (const std::size_t nPosition : positions) ranges.push_back(RangeAt(list, nPosition));
  MergeSampleRanges(ranges);
  for (std::size_t i = 0; i < positions.size(); ++i) {
    auto* const pItem = list.GetAt(static_cast<int>(positions[i]));
    pItem->SetStartSamplePos(ranges[i].dwStart);
    pItem->SetEndSamplePos(ranges[i].dwEnd);
  }
  return ranges;
}

template <typename List>
void MergeItems(List& list) {
  const auto ranges = MergeItemsAt(list, PositionsIn(list));
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

// A list of ranges that belongs to a sound. It learns of the changes that callers make through its
// interface and to its items, but not of items that are exchanged through SetAt; after that, it
// must be merged as a whole.
template <typename Item, typename Interface>
class C_SampleRangeList : public C_CLArray<Item*, Interface*, true> {
  using Base = C_CLArray<Item*, Interface*, true>;

 public:
  void RemoveItemByIndex(int nIndex) override {
    *m_changed = true;
    Base::RemoveItemByIndex(nIndex);
  }
  void RemoveAll() override {
    *m_changed = true;
    Base::RemoveAll();
  }

  void Merge() {
    *m_changed = true;
    MergeItems(*this);
  }
  // Appends a range and merges the list, which takes no more time for a long list than for a short
  // one as long as only this function changes it.
  void AppendAndMerge(unsigned int dwStart, unsigned int dwEnd) {
    if (!IsKnown()) {
      AppendRange(*this, dwStart, dwEnd);
      MergeItems(*this);
      Learn();
      return;
    }
    auto positions = m_index.Affected({dwStart, dwEnd});
    AppendRange(*this, dwStart, dwEnd);
    *m_changed = true;
    this->GetAt(this->GetCount() - 1)->ReportChangesTo(m_changed);
    if (positions.empty()) {
      m_index.Append({dwStart, dwEnd});
    } else {
      positions.push_back(m_index.Size());
      MergeAt(positions);
    }
    *m_changed = false;
  }

 private:
  // Callers change items and remove them, which m_changed tells; other code of ours adds items.
  [[nodiscard]] bool IsKnown() const {
    return !*m_changed && m_index.IsKnown() &&
           m_index.Size() == static_cast<std::size_t>(this->GetCount());
  }
  void MergeAt(const std::vector<std::size_t>& positions) {
    const auto ranges = MergeItemsAt(*this, positions);
    for (std::size_t i = positions.size(); i-- > 0;) {
      if (ranges[i].bRemoved) this->RemoveAt(static_cast<int>(positions[i]), 1);
    }
    m_index.Replace(positions, ranges);
  }
  void Learn() {
    const auto positions = PositionsIn(*this);
    std::vector<S_SampleRange> ranges;
    ranges.reserve(positions.size());
    for (const std::size_t nPosition : positions) {
      this->GetAt(static_cast<int>(nPosition))->ReportChangesTo(m_changed);
      ranges.push_back(RangeAt(*this, nPosition));
    }
    m_index.Learn(ranges);
    *m_changed = false;
  }

  C_RangeIndex m_index;
  // Whether the list or an item has changed since m_index was up to date. Items may outlive the
  // list.
  std::shared_ptr<bool> m_changed = std::make_shared<bool>(true);
};

}  // namespace vcm
