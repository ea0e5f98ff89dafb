// SPDX-License-Identifier: Apache-2.0
#include "annotation/EventTag.h"

#include <gtest/gtest.h>

#include <string>

#include "VTable.h"

namespace {

C_EventTag TimeTag(unsigned int dwTime, unsigned int dwSampleRate) {
  return {0, dwTime, "", 0, dwSampleRate, EVENT_POS_TIME};
}

C_EventTag SampleTag(unsigned int dwSamplePos, unsigned int dwSampleRate) {
  return {0, dwSamplePos, "", 0, dwSampleRate, EVENT_POS_SAMPLE};
}

}  // namespace

TEST(EventTag, Constructor_TakesEveryField) {
  C_EventTag tag(0x00030007u, 250, "hello", 99, 8000, EVENT_POS_TIME);
  EXPECT_EQ(tag.GetMainCommandIndex(), 3);
  EXPECT_EQ(tag.GetSubCommandIndex(), 7);
  EXPECT_EQ(tag.GetTime(), 250u);
  EXPECT_STREQ(tag.GetDescription(), "hello");
  EXPECT_EQ(tag.GetData(), 99u);
  EXPECT_EQ(tag.GetSamplePos(), 2000u);
}

TEST(EventTag, CommandIndex_HoldsTwo16BitHalves) {
  C_EventTag tag = TimeTag(0, 0);
  tag.SetCommandIndex(3, 7);
  EXPECT_EQ(tag.GetMainCommandIndex(), 3);
  EXPECT_EQ(tag.GetSubCommandIndex(), 7);
  tag.SetCommandIndex(0xFFFF, 0x8000);
  EXPECT_EQ(tag.GetMainCommandIndex(), 0xFFFF);
  EXPECT_EQ(tag.GetSubCommandIndex(), 0x8000);
  EXPECT_EQ(C_EventTag(0xABCD1234u, 0, "", 0, 0, EVENT_POS_TIME).GetMainCommandIndex(), 0xABCD);
}

TEST(EventTag, TimeOfASample_IsTruncated) {
  EXPECT_EQ(SampleTag(22050, 44100).GetTime(), 500u);
  EXPECT_EQ(SampleTag(1, 3).GetTime(), 333u);
  EXPECT_EQ(SampleTag(1, 44100).GetTime(), 0u);
  EXPECT_EQ(SampleTag(0xFFFFFFFFu, 44100).GetTime(), 97391548u);
}

TEST(EventTag, SampleOfATime_IsTruncatedAndNeverWrapsOnTheWay) {
  EXPECT_EQ(TimeTag(333, 8000).GetSamplePos(), 2664u);
  EXPECT_EQ(TimeTag(600000, 44100).GetSamplePos(), 26460000u);
  EXPECT_EQ(TimeTag(1, 1999).GetSamplePos(), 1u);
}

TEST(EventTag, MomentBeyond32Bits_IsTheLargestValue) {
  EXPECT_EQ(SampleTag(0xFFFFFFFFu, 1).GetTime(), 0xFFFFFFFFu);
  EXPECT_EQ(SampleTag(0xFFFFFFFFu, 1000).GetTime(), 0xFFFFFFFFu);
  EXPECT_EQ(SampleTag(0xFFFFFFFEu, 1000).GetTime(), 0xFFFFFFFEu);
  EXPECT_EQ(TimeTag(0xFFFFFFFFu, 0xFFFFFFFFu).GetSamplePos(), 0xFFFFFFFFu);
}

TEST(EventTag, WithoutSampleRate_ConversionStopsTheProgram) {
  EXPECT_DEATH(SampleTag(1, 0).GetTime(),
               "^GetTime: WaveFileLib/EventTag:42: assertion failed: m_dwSampleRate > 0\n$");
  EXPECT_DEATH(TimeTag(1, 0).GetSamplePos(),
               "^GetSamplePos: WaveFileLib/EventTag:65: assertion failed: m_dwSampleRate > 0\n$");
}

TEST(EventTag, WithoutSampleRate_TheOwnUnitStillAnswers) {
  EXPECT_EQ(TimeTag(5, 0).GetTime(), 5u);
  EXPECT_EQ(SampleTag(6, 0).GetSamplePos(), 6u);
}

TEST(EventTag, SettingAMoment_SwitchesTheUnit) {
  C_EventTag tag = TimeTag(1000, 8000);
  tag.SetSamplePos(1);
  EXPECT_EQ(tag.GetSamplePos(), 1u);
  EXPECT_EQ(tag.GetTime(), 0u);
  tag.SetTime(2);
  EXPECT_EQ(tag.GetTime(), 2u);
  EXPECT_EQ(tag.GetSamplePos(), 16u);
}

TEST(EventTag, SampleRate_ChangesConversionsOnly) {
  C_EventTag tag = SampleTag(8000, 8000);
  EXPECT_EQ(tag.GetTime(), 1000u);
  tag.SetSampleRate(16000);
  EXPECT_EQ(tag.GetSamplePos(), 8000u);
  EXPECT_EQ(tag.GetTime(), 500u);
}

TEST(EventTag, Description_IsCopied) {
  std::string strText = "before";
  C_EventTag tag(0, 0, strText.c_str(), 0, 0, EVENT_POS_TIME);
  strText = "xxxxxx";
  EXPECT_STREQ(tag.GetDescription(), "before");
  strText = "second";
  tag.SetDescription(strText.c_str());
  strText = "yyyyyy";
  EXPECT_STREQ(tag.GetDescription(), "second");
}

TEST(EventTag, NullDescription_IsTheEmptyText) {
  C_EventTag tag(0, 0, nullptr, 0, 0, EVENT_POS_TIME);
  EXPECT_STREQ(tag.GetDescription(), "");
  tag.SetDescription("text");
  tag.SetDescription(nullptr);
  EXPECT_STREQ(tag.GetDescription(), "");
}

TEST(EventTag, Data_IsKept) {
  C_EventTag tag = TimeTag(0, 0);
  tag.SetData(0xFFFFFFFFu);
  EXPECT_EQ(tag.GetData(), 0xFFFFFFFFu);
}

TEST(EventTag, Units_HaveFixedNumbers) {
  EXPECT_EQ(static_cast<int>(EVENT_POS_TIME), 0);
  EXPECT_EQ(static_cast<int>(EVENT_POS_SAMPLE), 1);
}

TEST(EventTag, Operations_StandInTheirSlots) {
  auto* pTag = new C_EventTag(0x00030007u, 250, "hello", 99, 8000, EVENT_POS_TIME);
  I_EventTag* pITag = pTag;
  EXPECT_EQ(CallSlot<unsigned short>(pITag, 0), 3);
  EXPECT_EQ(CallSlot<unsigned short>(pITag, 1), 7);
  CallSlot<void, unsigned short, unsigned short>(pITag, 2, 4, 8);
  EXPECT_EQ(pTag->GetMainCommandIndex(), 4);
  EXPECT_EQ(CallSlot<unsigned int>(pITag, 3), 250u);
  CallSlot<void>(pITag, 4, 300u);
  EXPECT_EQ(pTag->GetTime(), 300u);
  EXPECT_STREQ(CallSlot<const char*>(pITag, 5), "hello");
  CallSlot<void>(pITag, 6, "bye");
  EXPECT_STREQ(pTag->GetDescription(), "bye");
  EXPECT_EQ(CallSlot<unsigned int>(pITag, 7), 99u);
  CallSlot<void>(pITag, 8, 98u);
  EXPECT_EQ(pTag->GetData(), 98u);
  EXPECT_EQ(CallSlot<unsigned int>(pITag, 9), 2400u);
  CallSlot<void>(pITag, 10, 17u);
  EXPECT_EQ(pTag->GetSamplePos(), 17u);
  CallSlot<void>(pITag, 12);
}
