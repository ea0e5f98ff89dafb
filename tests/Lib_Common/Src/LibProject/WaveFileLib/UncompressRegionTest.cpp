// SPDX-License-Identifier: Apache-2.0
#include "UncompressRegion.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "CLArray.h"
#include "VTable.h"

TEST(UncompressRegion, SampleSize_CountsBothEnds) {
  EXPECT_EQ(C_UncompressRegion(100, 199).GetSampleSize(), 100u);
  EXPECT_EQ(C_UncompressRegion(5, 5).GetSampleSize(), 1u);
}

TEST(UncompressRegion, SampleSize_WrapsWhenTheEndIsBeforeTheStart) {
  EXPECT_EQ(C_UncompressRegion(10, 9).GetSampleSize(), 0u);
  EXPECT_EQ(C_UncompressRegion(10, 8).GetSampleSize(), 0xFFFFFFFFu);
  EXPECT_EQ(C_UncompressRegion(0, 0xFFFFFFFFu).GetSampleSize(), 0u);
}

TEST(UncompressRegion, Positions_AreKeptUnchecked) {
  C_UncompressRegion range(7, 3);
  EXPECT_EQ(range.GetStartSamplePos(), 7u);
  EXPECT_EQ(range.GetEndSamplePos(), 3u);
  range.SetStartSamplePos(0xFFFFFFFFu);
  range.SetEndSamplePos(1);
  EXPECT_EQ(range.GetStartSamplePos(), 0xFFFFFFFFu);
  EXPECT_EQ(range.GetEndSamplePos(), 1u);
}

TEST(UncompressRegion, SetUncompressRange_SetsBothEnds) {
  C_UncompressRegion range(0, 0);
  range.SetUncompressRange(4, 9);
  EXPECT_EQ(range.GetStartSamplePos(), 4u);
  EXPECT_EQ(range.GetEndSamplePos(), 9u);
  EXPECT_EQ(range.GetSampleSize(), 6u);
}

TEST(UncompressRegion, UncompressRegion_HasNoVirtualDestructor) {
  EXPECT_FALSE(std::has_virtual_destructor_v<I_UncompressRegion>);
  EXPECT_FALSE(std::has_virtual_destructor_v<C_UncompressRegion>);
  EXPECT_TRUE(std::is_final_v<C_UncompressRegion>);
}

TEST(UncompressRegion, OwningList_DeletesItsItems) {
  C_CLArray<C_UncompressRegion*, I_UncompressRegion*, true> list;
  list.Add(new C_UncompressRegion(1, 2));
  list.Add(new C_UncompressRegion(3, 4));
  list.RemoveItemByIndex(0);
  EXPECT_EQ(list.GetItemByIndex(0)->GetStartSamplePos(), 3u);
}

TEST(UncompressRegion, Operations_StandInTheirSlots) {
  C_UncompressRegion range(10, 19);
  I_UncompressRegion* pRange = &range;
  EXPECT_EQ(CallSlot<unsigned int>(pRange, 0), 10u);
  EXPECT_EQ(CallSlot<unsigned int>(pRange, 1), 19u);
  EXPECT_EQ(CallSlot<unsigned int>(pRange, 2), 10u);
  CallSlot<void>(pRange, 3, 15u);
  CallSlot<void>(pRange, 4, 16u);
  EXPECT_EQ(range.GetSampleSize(), 2u);
}
