// SPDX-License-Identifier: Apache-2.0
//
// Silence segments and uncompressed regions: two separate classes that behave alike.
#include <gtest/gtest.h>

#include <type_traits>

#include "CLArray.h"
#include "VTable.h"
#include "annotation/SilenceSegment.h"
#include "annotation/UncompressRegion.h"

namespace {

struct S_Silence {
  using Class = C_SilenceSegment;
  using Interface = I_SilenceSegment;
  static void SetRange(Class& range, unsigned int dwStart, unsigned int dwEnd) {
    range.SetSilenceRange(dwStart, dwEnd);
  }
};

struct S_Uncompressed {
  using Class = C_UncompressRegion;
  using Interface = I_UncompressRegion;
  static void SetRange(Class& range, unsigned int dwStart, unsigned int dwEnd) {
    range.SetUncompressRange(dwStart, dwEnd);
  }
};

template <typename Kind>
class SampleRange : public testing::Test {};

using Kinds = testing::Types<S_Silence, S_Uncompressed>;
TYPED_TEST_SUITE(SampleRange, Kinds);

}  // namespace

TYPED_TEST(SampleRange, SampleSize_CountsBothEnds) {
  using Range = typename TypeParam::Class;
  EXPECT_EQ(Range(100, 199).GetSampleSize(), 100u);
  EXPECT_EQ(Range(5, 5).GetSampleSize(), 1u);
}

TYPED_TEST(SampleRange, SampleSize_WrapsWhenTheEndIsBeforeTheStart) {
  using Range = typename TypeParam::Class;
  EXPECT_EQ(Range(10, 9).GetSampleSize(), 0u);
  EXPECT_EQ(Range(10, 8).GetSampleSize(), 0xFFFFFFFFu);
  EXPECT_EQ(Range(0, 0xFFFFFFFFu).GetSampleSize(), 0u);
}

TYPED_TEST(SampleRange, Positions_AreKeptUnchecked) {
  typename TypeParam::Class range(7, 3);
  EXPECT_EQ(range.GetStartSamplePos(), 7u);
  EXPECT_EQ(range.GetEndSamplePos(), 3u);
  range.SetStartSamplePos(0xFFFFFFFFu);
  range.SetEndSamplePos(1);
  EXPECT_EQ(range.GetStartSamplePos(), 0xFFFFFFFFu);
  EXPECT_EQ(range.GetEndSamplePos(), 1u);
}

TYPED_TEST(SampleRange, SetRange_SetsBothEnds) {
  typename TypeParam::Class range(0, 0);
  TypeParam::SetRange(range, 4, 9);
  EXPECT_EQ(range.GetStartSamplePos(), 4u);
  EXPECT_EQ(range.GetEndSamplePos(), 9u);
  EXPECT_EQ(range.GetSampleSize(), 6u);
}

TYPED_TEST(SampleRange, Range_HasNoVirtualDestructor) {
  using Range = typename TypeParam::Class;
  EXPECT_FALSE(std::has_virtual_destructor_v<typename TypeParam::Interface>);
  EXPECT_FALSE(std::has_virtual_destructor_v<Range>);
  EXPECT_TRUE(std::is_final_v<Range>);
}

TYPED_TEST(SampleRange, OwningList_DeletesItsItems) {
  using Range = typename TypeParam::Class;
  C_CLArray<Range*, typename TypeParam::Interface*, true> list;
  list.Add(new Range(1, 2));
  list.Add(new Range(3, 4));
  list.RemoveItemByIndex(0);
  EXPECT_EQ(list.GetItemByIndex(0)->GetStartSamplePos(), 3u);
}

TYPED_TEST(SampleRange, Operations_StandInTheirSlots) {
  typename TypeParam::Class range(10, 19);
  typename TypeParam::Interface* pRange = &range;
  EXPECT_EQ(CallSlot<unsigned int>(pRange, 0), 10u);
  EXPECT_EQ(CallSlot<unsigned int>(pRange, 1), 19u);
  EXPECT_EQ(CallSlot<unsigned int>(pRange, 2), 10u);
  CallSlot<void>(pRange, 3, 15u);
  CallSlot<void>(pRange, 4, 16u);
  EXPECT_EQ(range.GetSampleSize(), 2u);
}
