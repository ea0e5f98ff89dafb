// SPDX-License-Identifier: Apache-2.0
//
// The library's only list type: a vector of item pointers, handed out as interface pointers. A list
// may or may not own its items. It is not synchronised: a list belongs to one object and one
// thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

// A list as callers see it. I is a pointer type, for example I_SilenceSegment*. The trailing
// numbers are the slots of the virtual table, which callers built against other versions rely on.
template <typename I>
class I_CLArray {
 public:
  virtual int GetSize() const = 0;                 // 1
  virtual I GetItemByIndex(int nIndex) const = 0;  // 2, std::out_of_range on a bad index
  virtual void RemoveItemByIndex(int nIndex) = 0;  // 3, the index must be inside the list
  virtual void RemoveAll() = 0;                    // 4
  virtual ~I_CLArray() = default;                  // 5
};

// The implementation of Interface (I_CLArray<I>, or a richer interface that extends it).
// T is the stored pointer type; bOwn says whether removed items are deleted (through T).
template <typename Interface, typename T, typename I, bool bOwn>
class C_CLCustomArray : public Interface {
 public:
  C_CLCustomArray() = default;
  // A copy refers to the same items, so only a list that does not own them can be copied.
  C_CLCustomArray(const C_CLCustomArray& other) requires(!bOwn) = default;
  C_CLCustomArray(const C_CLCustomArray&) requires(bOwn) = delete;
  C_CLCustomArray& operator=(const C_CLCustomArray&) = delete;
  ~C_CLCustomArray() override { C_CLCustomArray::RemoveAll(); }

  int GetSize() const override { return static_cast<int>(m_items.size()); }
  I GetItemByIndex(int nIndex) const override { return GetAt(nIndex); }
  void RemoveItemByIndex(int nIndex) override { RemoveAt(nIndex, 1); }
  void RemoveAll() override {
    if constexpr (bOwn) {
      // During destruction this call gets this class's own size, which is intended.
      // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall)
      for (int i = 0; i < this->GetSize(); ++i) delete GetAt(i);
    }
    m_items.clear();
  }

  // Calls GetSize() virtually, so a subclass that overrides GetSize() changes both.
  int GetCount() const { return this->GetSize(); }

  // Throws std::out_of_range for an index outside 0 .. GetSize() - 1, including negative ones.
  T GetAt(int nIndex) const { return m_items.at(static_cast<std::size_t>(nIndex)); }

  // Kept: there is no range check, and even an owning list never deletes the overwritten item.
  // Callers swap items in and out this way. Pinned by SetAt_LeavesTheOverwrittenItemAlive.
  T& SetAt(int nIndex, T item) {
    ++s_nExchanges;
    T& slot = m_items[static_cast<std::size_t>(nIndex)];
    slot = item;
    return slot;
  }

  // How often an item was put into any list of this class: by SetAt or, where lists do not own
  // their items, by Add or InsertAt. A list itself is a vector behind its interface and has no room
  // to count.
  [[nodiscard]] static std::size_t Exchanges() { return s_nExchanges; }

  // Appends the item and returns its index.
  int Add(T item) {
    if constexpr (!bOwn) ++s_nExchanges;
    m_items.push_back(item);
    return this->GetSize() - 1;
  }

  // Inserts nCount copies of item before position nIndex; position GetSize() appends.
  void InsertAt(int nIndex, T item, int nCount) requires(!bOwn) {
    ++s_nExchanges;
    m_items.insert(m_items.begin() + nIndex, static_cast<std::size_t>(nCount), item);
  }

  // Removes nCount items from nIndex on; they must lie inside the list. An owning list first
  // deletes them in ascending order.
  void RemoveAt(int nIndex, int nCount) {
    const auto first = m_items.begin() + nIndex;
    const auto last = first + nCount;
    if constexpr (bOwn) {
      for (auto it = first; it != last; ++it) delete *it;
    }
    m_items.erase(first, last);
  }

 protected:
  // For a class that puts items into its own lists, which does not count.
  std::vector<T>& Items() { return m_items; }

 private:
  std::vector<T> m_items;
  inline static std::atomic<std::size_t> s_nExchanges = 0;
};

// The list type that the data model uses.
template <typename T, typename I, bool bOwn>
class C_CLArray : public C_CLCustomArray<I_CLArray<I>, T, I, bOwn> {
 public:
  C_CLArray() = default;
  C_CLArray(const C_CLArray& other) = default;
  ~C_CLArray() override = default;
};

namespace vcm {

// Appends an item to a list that owns its items, and returns the item. If there is no memory left,
// this throws and the item is deleted.
template <typename List, typename Item>
Item* AddOwned(List& list, std::unique_ptr<Item> item) {
  list.Add(item.get());
  return item.release();
}

// Deletes the items for which bKeep returns false from a list that owns its items; the others keep
// their order. Calls bKeep(pItem) once for each item, from the first to the last. This takes linear
// time, unlike removing the items one by one.
template <typename List, typename Keep>
void KeepIf(List& list, Keep bKeep) {
  int nKept = 0;
  for (int i = 0; i < list.GetCount(); ++i) {
    auto* const pItem = list.GetAt(i);
    if (!bKeep(pItem)) continue;
    list.SetAt(i, list.GetAt(nKept));
    list.SetAt(nKept++, pItem);
  }
  list.RemoveAt(nKept, list.GetCount() - nKept);
}

}  // namespace vcm
