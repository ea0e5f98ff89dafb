// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataInfo.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "InfoChunk.h"
#include "VTable.h"
#include "annotation/EventTagMgr.h"
#include "annotation/SilenceSegment.h"
#include "annotation/UncompressRegion.h"

TEST(WavDataTextInfo, Info_IsAPlaceholder) {
  C_WavDataTextInfo info;
  EXPECT_FALSE(info.IsValid());
  EXPECT_EQ(info.GetChunkLength(), 4u);
  C_RiffChunk chunk("text", 4);
  EXPECT_FALSE(info.SaveInfo(&chunk));
  C_Bytes target(4);
  EXPECT_FALSE(chunk.GetData(target.data(), 4, 0));
}

TEST(WavDataTextInfo, Operations_StandInTheirSlots) {
  auto* pInfo = new C_WavDataTextInfo;
  I_WavDataTextInfo* pIInfo = pInfo;
  EXPECT_FALSE(CallSlot<bool>(pIInfo, 0));
  EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 1), 4u);
  EXPECT_FALSE((CallSlot<bool, I_RiffChunk*>(pIInfo, 2, nullptr)));
  CallSlot<void>(pIInfo, 4);
}

TEST(WavDataInfo, Kinds_HaveFixedNumbers) {
  EXPECT_EQ(WAV_DATA_INFO_CUE, 1);
  EXPECT_EQ(WAV_DATA_INFO_TEXT, 2);
  EXPECT_EQ(WAV_DATA_INFO_SAMPLER, 3);
  EXPECT_EQ(WAV_DATA_INFO_LIST, 4);
  EXPECT_EQ(WAV_DATA_INFO_EXTRA_CHUNK, 5);
}

TEST(WavDataInfo, Lists_AreDeclaredWithTheirExactTypes) {
  EXPECT_TRUE((std::is_same_v<C_WavDataCueInfo::CuePointList,
                              C_CLArray<C_WavDataCueInfo::C_CuePoint*, I_WavDataCuePoint*, true>>));
  EXPECT_TRUE(
      (std::is_same_v<C_WavDataSamplerInfo::SampleLoopList,
                      C_CLArray<C_WavDataSamplerInfo::C_SampleLoop*, I_WavDataSampleLoop*, true>>));
  EXPECT_TRUE(
      (std::is_same_v<C_WavDataListInfo::LabelList,
                      C_CLArray<C_WavDataListInfo::S_Label*, C_WavDataListInfo::S_Label*, true>>));
  EXPECT_TRUE(
      (std::is_same_v<C_WavDataListInfo::LtxtList,
                      C_CLArray<C_WavDataListInfo::S_Ltxt*, C_WavDataListInfo::S_Ltxt*, true>>));
  EXPECT_TRUE((std::is_base_of_v<C_CLCustomArray<I_WavDataExtraChunkInfo, C_WavDataExtraChunk*,
                                                 I_WavDataExtraChunk*, true>,
                                 C_WavDataExtraChunkInfo>));
  EXPECT_TRUE(
      (std::is_same_v<C_EventTagMgr::EventList, C_CLArray<C_EventTag*, I_EventTag*, false>>));
  EXPECT_TRUE((std::is_base_of_v<C_CLArray<C_RiffChunk*, C_RiffChunk*, true>, C_RiffChunkList>));
}

TEST(WavDataInfo, EveryListOfTheLibrary_AddsAndDeletes) {
  C_CLArray<C_SilenceSegment*, I_SilenceSegment*, true> segments;
  EXPECT_EQ(segments.Add(new C_SilenceSegment(1, 2)), 0);
  C_CLArray<C_UncompressRegion*, I_UncompressRegion*, true> regions;
  EXPECT_EQ(regions.Add(new C_UncompressRegion(1, 2)), 0);
  C_WavDataListInfo::LabelList labels;
  EXPECT_EQ(labels.Add(new C_WavDataListInfo::S_Label{}), 0);
  C_WavDataListInfo::LtxtList ltxts;
  EXPECT_EQ(ltxts.Add(new C_WavDataListInfo::S_Ltxt{}), 0);
  C_WavDataCueInfo::CuePointList cuePoints;
  EXPECT_EQ(cuePoints.Add(new C_WavDataCueInfo::C_CuePoint({}, nullptr)), 0);
  C_WavDataSamplerInfo::SampleLoopList loops;
  EXPECT_EQ(loops.Add(new C_WavDataSamplerInfo::C_SampleLoop({}, nullptr)), 0);
}

TEST(WavDataInfo, Setters_CarryTheNamesThatCallersUse) {
  C_WavDataSamplerInfo info(nullptr);
  I_WavDataSamplerInfo& iInfo = info;
  iInfo.SetManufactureID(7);
  EXPECT_EQ(iInfo.GetManufactureID(), 7u);
  iInfo.GetSamplerData(8u);
  EXPECT_EQ(iInfo.GetSamplerData(), 8u);
}
