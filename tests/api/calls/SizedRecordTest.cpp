// SPDX-License-Identifier: Apache-2.0
#include "calls/SizedRecord.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace api {
namespace {

struct S_Record {
  std::uint32_t dwFirst;
  std::uint32_t dwSecond;
  const char* pszThird;
};

TEST(SizedRecord, CopyOut_CopiesWhatTheCallerKnows) {
  const S_Record record{1, 2, "three"};
  S_Record target{7, 8, "nine"};
  EXPECT_FALSE(CopyOut(record, &S_Record::dwFirst, &target, 0));
  EXPECT_FALSE(CopyOut(record, &S_Record::dwFirst, &target, 3));
  EXPECT_EQ(target.dwFirst, 7U);
  EXPECT_TRUE(CopyOut(record, &S_Record::dwFirst, &target, 4));
  EXPECT_EQ(target.dwFirst, 1U);
  EXPECT_EQ(target.dwSecond, 8U);
  EXPECT_TRUE(CopyOut(record, &S_Record::dwFirst, &target, sizeof(target)));
  EXPECT_STREQ(target.pszThird, "three");
  EXPECT_FALSE(CopyOut<S_Record>(record, &S_Record::dwFirst, nullptr, sizeof(target)));
}

TEST(SizedRecord, CopyOutToALaterVersion_ClearsItsFurtherMembers) {
  struct S_Later {
    S_Record record;
    std::uint32_t dwFourth;
  };
  S_Later later{{}, 44};
  EXPECT_TRUE(CopyOut({1, 2, "three"}, &S_Record::dwFirst, &later.record, sizeof(later)));
  EXPECT_EQ(later.record.dwSecond, 2U);
  EXPECT_EQ(later.dwFourth, 0U);
}

TEST(SizedRecord, CopyIn_HasZerosForWhatTheCallerDoesNotKnow) {
  const S_Record source{1, 2, "three"};
  EXPECT_FALSE(CopyIn(&source, &S_Record::dwFirst, 3).has_value());
  EXPECT_FALSE(CopyIn<S_Record>(nullptr, &S_Record::dwFirst, sizeof(source)).has_value());
  const auto some = CopyIn(&source, &S_Record::dwFirst, 4);
  ASSERT_TRUE(some.has_value());
  EXPECT_EQ(some->dwFirst, 1U);
  EXPECT_EQ(some->dwSecond, 0U);
  EXPECT_EQ(some->pszThird, nullptr);
}

TEST(SizedRecord, CutPointer_BecomesNull) {
  const S_Record source{1, 2, "three"};
  auto cut = CopyIn(&source, &S_Record::dwFirst, sizeof(source) - 1);
  ASSERT_TRUE(cut.has_value());
  DropCutPointer(*cut, &S_Record::pszThird, sizeof(source) - 1);
  EXPECT_EQ(cut->pszThird, nullptr);
  auto whole = CopyIn(&source, &S_Record::dwFirst, sizeof(source));
  ASSERT_TRUE(whole.has_value());
  DropCutPointer(*whole, &S_Record::pszThird, sizeof(source));
  EXPECT_STREQ(whole->pszThird, "three");
}

}  // namespace
}  // namespace api
