// SPDX-License-Identifier: Apache-2.0
//
// The operations that lists of silence segments and lists of uncompressed regions share. List is a
// C_CLArray that owns its items. Null items are skipped; callers can only put them there through
// the array itself.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "CLArray.h"
#include "annotation/RangeChanges.h"
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

// A list of ranges that belongs to a sound.
template <typename Item, typename Interface>
class C_SampleRangeList : public C_CLArray<Item*, Interface*, true> {
 public:
  void Merge() { MergeItems(*this); }

  // Appends a range and merges the list, which takes no more time for a long list than for a short
  // one, unless callers put in items of their own or take some out.
  void AppendAndMerge(unsigned int dwStart, unsigned int dwEnd) {
    if (!IsKnown()) {
      AppendRange(*this, dwStart, dwEnd);
      MergeItems(*this);
      Learn();
      return;
    }
    m_nKnown.reset();
    TakeChanges();
    AppendRange(*this, dwStart, dwEnd);
    auto positions = m_index.Affected({dwStart, dwEnd});
    this->GetAt(this->GetCount() - 1)->ReportChangesTo(m_changes, m_index.NextNumber());
    m_index.Append({dwStart, dwEnd});
    if (m_index.IsKnown() && !positions.empty()) {
      positions.push_back(m_index.Size() - 1);
      MergeAt(positions);
    } else if (!m_index.IsKnown()) {
      MergeItems(*this);
    }
    m_changes->Clear();
    m_nKnown = this->Exchanges();
    // The index remembers ranges that are gone.
    if (m_index.NextNumber() > 2 * m_index.Size() + kMostGone) Learn();
  }

 private:
  static constexpr std::size_t kMostGone = 64;

  [[nodiscard]] bool IsKnown() const {
    return m_index.IsKnown() && m_nKnown == this->Exchanges() && !m_changes->HasAny() &&
           m_index.Size() == static_cast<std::size_t>(this->GetCount());
  }
  void TakeChanges() {
    for (const std::size_t nNumber : m_changes->Numbers()) {
      const std::size_t nPosition = m_index.PositionOf(nNumber);
      if (nPosition < m_index.Size()) m_index.Change(nPosition, RangeAt(*this, nPosition));
    }
  }
  void MergeAt(const std::vector<std::size_t>& positions) {
    const auto ranges = MergeItemsAt(*this, positions);
    for (std::size_t i = positions.size(); i-- > 0;) {
      if (ranges[i].bRemoved) this->RemoveAt(static_cast<int>(positions[i]), 1);
    }
    m_index.Replace(positions, ranges);
  }
  void Learn() {
    std::vector<S_SampleRange> ranges;
    ranges.reserve(static_cast<std::size_t>(this->GetCount()));
    m_nKnown.reset();
    m_index.Forget();
    for (int i = 0; i < this->GetCount(); ++i) {
      Item* const pItem = this->GetAt(i);
      if (pItem == nullptr) return;
      pItem->ReportChangesTo(m_changes, ranges.size());
      ranges.push_back({pItem->GetStartSamplePos(), pItem->GetEndSamplePos()});
    }
    m_index.Learn(ranges);
    m_changes->Clear();
    m_nKnown = this->Exchanges();
  }

  C_RangeIndex m_index;
  std::shared_ptr<C_RangeChanges> m_changes = std::make_shared<C_RangeChanges>();
  // The exchanges of items when m_index was up to date; empty while it is not.
  std::optional<std::size_t> m_nKnown;
};

}  // namespace vcm
