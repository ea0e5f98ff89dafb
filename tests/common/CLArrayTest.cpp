// SPDX-License-Identifier: Apache-2.0
#include "CLArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <type_traits>

#include "VTable.h"

namespace {

class I_Item {
 public:
  virtual int Number() const = 0;

 protected:
  ~I_Item() = default;
};

// Keeps I_Item away from the start of the object, so that a conversion is not just a copy.
struct S_Ballast {
  virtual ~S_Ballast() = default;
  int nBallast = 0;
};

std::vector<int> g_deleted;

class C_Item final : public S_Ballast, public I_Item {
 public:
  explicit C_Item(int nNumber) : m_nNumber(nNumber) {}
  ~C_Item() override { g_deleted.push_back(m_nNumber); }
  int Number() const override { return m_nNumber; }

 private:
  int m_nNumber;
};

using OwningList = C_CLArray<C_Item*, I_Item*, true>;
using BorrowingList = C_CLArray<C_Item*, I_Item*, false>;

template <typename List>
std::vector<int> NumbersIn(const List& list) {
  std::vector<int> numbers;
  for (int i = 0; i < list.GetCount(); ++i) numbers.push_back(list.GetItemByIndex(i)->Number());
  return numbers;
}

class CLArray : public ::testing::Test {
 protected:
  void SetUp() override { g_deleted.clear(); }
  static void Fill(OwningList& list, int nCount) {
    for (int i = 0; i < nCount; ++i) list.Add(new C_Item(i));
  }
};

class C_FiveMoreList : public OwningList {
 public:
  int GetSize() const override { return OwningList::GetSize() + 5; }
};

// Reports more items than it has, but only while it is told to.
class C_StretchedList : public OwningList {
 public:
  int GetSize() const override { return OwningList::GetSize() + nExtra; }
  int nExtra = 0;
};

}  // namespace

TEST_F(CLArray, Add_ReturnsTheNewIndex) {
  OwningList list;
  EXPECT_EQ(list.Add(new C_Item(0)), 0);
  Fill(list, 2);
  EXPECT_EQ(list.Add(new C_Item(3)), 3);
}

TEST_F(CLArray, GetAt_OutsideTheList_Throws) {
  OwningList list;
  EXPECT_THROW(list.GetAt(0), std::out_of_range);
  Fill(list, 2);
  EXPECT_THROW(list.GetAt(-1), std::out_of_range);
  EXPECT_THROW(list.GetAt(2), std::out_of_range);
  EXPECT_THROW(list.GetItemByIndex(-1), std::out_of_range);
  EXPECT_THROW(list.GetItemByIndex(2), std::out_of_range);
  EXPECT_EQ(list.GetAt(1)->Number(), 1);
}

TEST_F(CLArray, AddOwned_HandsTheItemToTheListAndReturnsIt) {
  {
    OwningList list;
    Fill(list, 1);
    const C_Item* pItem = vcm::AddOwned(list, std::make_unique<C_Item>(7));
    EXPECT_EQ(pItem, list.GetAt(1));
    EXPECT_EQ(NumbersIn(list), (std::vector{0, 7}));
    EXPECT_TRUE(g_deleted.empty());
  }
  EXPECT_EQ(g_deleted, (std::vector{0, 7}));
}

TEST_F(CLArray, RemoveAt_OnAnOwningList_DeletesInAscendingOrderAndClosesTheGap) {
  OwningList list;
  Fill(list, 5);
  list.RemoveAt(1, 2);
  EXPECT_EQ(g_deleted, (std::vector{1, 2}));
  EXPECT_EQ(NumbersIn(list), (std::vector{0, 3, 4}));
}

TEST_F(CLArray, RemoveAt_OfNothing_ChangesNothing) {
  OwningList list;
  Fill(list, 2);
  list.RemoveAt(1, 0);
  list.RemoveAt(2, 0);
  EXPECT_EQ(NumbersIn(list), (std::vector{0, 1}));
  EXPECT_TRUE(g_deleted.empty());
}

TEST_F(CLArray, RemoveItemByIndex_RemovesThatOneItem) {
  OwningList list;
  Fill(list, 3);
  list.RemoveItemByIndex(1);
  EXPECT_EQ(g_deleted, (std::vector{1}));
  EXPECT_EQ(NumbersIn(list), (std::vector{0, 2}));
}

TEST_F(CLArray, OwningList_DeletesEachItemOnceOverItsLife) {
  {
    OwningList list;
    Fill(list, 4);
    list.RemoveAll();
    EXPECT_EQ(g_deleted, (std::vector{0, 1, 2, 3}));
    EXPECT_EQ(list.GetSize(), 0);
    list.Add(new C_Item(9));
  }
  EXPECT_EQ(g_deleted, (std::vector{0, 1, 2, 3, 9}));
}

TEST_F(CLArray, BorrowingList_NeverDeletes) {
  C_Item first(1);
  C_Item second(2);
  {
    BorrowingList list;
    list.Add(&first);
    list.Add(&second);
    list.RemoveAt(0, 1);
    list.Add(&first);
    list.RemoveItemByIndex(0);
    list.RemoveAll();
    EXPECT_EQ(list.GetSize(), 0);
    list.Add(&first);
  }
  EXPECT_TRUE(g_deleted.empty());
}

TEST_F(CLArray, SetAt_LeavesTheOverwrittenItemAlive) {
  OwningList list;
  Fill(list, 2);
  C_Item* pOld = list.GetAt(0);
  C_Item*& slot = list.SetAt(0, new C_Item(7));
  EXPECT_TRUE(g_deleted.empty());
  EXPECT_EQ(pOld->Number(), 0);
  EXPECT_EQ(NumbersIn(list), (std::vector{7, 1}));
  EXPECT_EQ(slot, list.GetAt(0));
  C_Item* pSwappedOut = slot;
  slot = pOld;
  EXPECT_EQ(NumbersIn(list), (std::vector{0, 1}));
  delete pSwappedOut;
}

TEST_F(CLArray, GetCount_AsksTheOverriddenGetSize) {
  C_StretchedList list;
  Fill(list, 1);
  list.nExtra = 5;
  EXPECT_EQ(list.GetCount(), 6);
  list.nExtra = 0;
}

TEST_F(CLArray, Add_TakesItsResultFromTheOverriddenGetSize) {
  C_StretchedList list;
  list.nExtra = 5;
  EXPECT_EQ(list.Add(new C_Item(0)), 5);
  list.nExtra = 0;
}

TEST_F(CLArray, RemoveAll_WalksToTheOverriddenGetSizeAndClearsOnlyAfterTheWalk) {
  C_StretchedList list;
  Fill(list, 2);
  list.nExtra = 1;
  EXPECT_THROW(list.RemoveAll(), std::out_of_range);
  EXPECT_EQ(g_deleted, (std::vector{0, 1}));
  list.nExtra = 0;
  EXPECT_EQ(list.GetSize(), 2);
  list.SetAt(0, nullptr);
  list.SetAt(1, nullptr);
}

TEST_F(CLArray, Destruction_IgnoresAnOverriddenGetSize) {
  {
    C_FiveMoreList list;
    Fill(list, 2);
  }
  EXPECT_EQ(g_deleted, (std::vector{0, 1}));
}

TEST_F(CLArray, InsertAt_PutsCopiesBeforeThePosition) {
  C_Item first(1);
  C_Item second(2);
  BorrowingList list;
  list.InsertAt(0, &first, 1);
  list.InsertAt(0, &second, 2);
  EXPECT_EQ(NumbersIn(list), (std::vector{2, 2, 1}));
  list.InsertAt(3, &second, 1);
  list.InsertAt(3, &first, 0);
  EXPECT_EQ(NumbersIn(list), (std::vector{2, 2, 1, 2}));
}

TEST_F(CLArray, CopyOfABorrowingList_RefersToTheSameItems) {
  C_Item item(1);
  BorrowingList list;
  list.Add(&item);
  BorrowingList copy(list);
  EXPECT_EQ(copy.GetAt(0), &item);
  copy.RemoveAll();
  EXPECT_EQ(list.GetAt(0), &item);
}

TEST_F(CLArray, OnlyBorrowingLists_CopyAndInsert) {
  EXPECT_TRUE(std::is_copy_constructible_v<BorrowingList>);
  EXPECT_FALSE(std::is_copy_constructible_v<OwningList>);
  constexpr auto bInserts = []<typename List>(List*) {
    return requires(List list, C_Item * pItem) { list.InsertAt(0, pItem, 1); };
  };
  EXPECT_TRUE(bInserts(static_cast<BorrowingList*>(nullptr)));
  EXPECT_FALSE(bInserts(static_cast<OwningList*>(nullptr)));
}

TEST_F(CLArray, GetItemByIndex_ConvertsToTheInterface) {
  OwningList list;
  Fill(list, 1);
  I_Item* pItem = list.GetItemByIndex(0);
  EXPECT_NE(static_cast<void*>(pItem), static_cast<void*>(list.GetAt(0)));
  EXPECT_EQ(pItem, static_cast<I_Item*>(list.GetAt(0)));
}

TEST_F(CLArray, KeepIf_RemovesRefusedItemsAndKeepsTheOrder) {
  OwningList list;
  Fill(list, 7);
  vcm::KeepIf(list, [](C_Item* pItem) { return pItem->Number() % 3 != 0; });
  EXPECT_EQ(NumbersIn(list), (std::vector{1, 2, 4, 5}));
  std::sort(g_deleted.begin(), g_deleted.end());
  EXPECT_EQ(g_deleted, (std::vector{0, 3, 6}));
}

TEST_F(CLArray, KeepIf_OfAllNoneOrNothing_KeepsThat) {
  OwningList list;
  vcm::KeepIf(list, [](C_Item*) { return false; });
  EXPECT_EQ(list.GetSize(), 0);
  Fill(list, 3);
  vcm::KeepIf(list, [](C_Item*) { return true; });
  EXPECT_EQ(NumbersIn(list), (std::vector{0, 1, 2}));
  EXPECT_TRUE(g_deleted.empty());
  vcm::KeepIf(list, [](C_Item*) { return false; });
  EXPECT_EQ(list.GetSize(), 0);
  EXPECT_EQ(g_deleted.size(), 3u);
}

TEST_F(CLArray, Shape_IsAVectorBehindTheInterface) {
  struct S_Shape {
    void* pTable;
    std::vector<C_Item*> items;
  };
  EXPECT_EQ(sizeof(OwningList), sizeof(S_Shape));
  EXPECT_TRUE(
      (std::is_base_of_v<C_CLCustomArray<I_CLArray<I_Item*>, C_Item*, I_Item*, true>, OwningList>));
  EXPECT_TRUE((std::is_base_of_v<I_CLArray<I_Item*>, OwningList>));
  EXPECT_EQ(sizeof(OwningList),
            sizeof(C_CLCustomArray<I_CLArray<I_Item*>, C_Item*, I_Item*, true>));
}

TEST_F(CLArray, Operations_StandInTheirSlots) {
  OwningList list;
  Fill(list, 4);
  I_CLArray<I_Item*>* pList = &list;
  EXPECT_EQ(CallSlot<int>(pList, 0), 4);
  EXPECT_EQ(CallSlot<I_Item*>(pList, 1, 2)->Number(), 2);
  CallSlot<void>(pList, 2, 2);
  EXPECT_EQ(NumbersIn(list), (std::vector{0, 1, 3}));
  CallSlot<void>(pList, 3);
  EXPECT_EQ(list.GetSize(), 0);
  auto* pOnHeap = new OwningList;
  pOnHeap->Add(new C_Item(8));
  g_deleted.clear();
  CallSlot<void>(static_cast<I_CLArray<I_Item*>*>(pOnHeap), 5);
  EXPECT_EQ(g_deleted, (std::vector{8}));
}
