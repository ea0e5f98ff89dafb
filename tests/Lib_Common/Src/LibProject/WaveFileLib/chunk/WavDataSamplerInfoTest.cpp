// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataSamplerInfo.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "InfoChunk.h"
#include "LargestAllocation.h"
#include "VTable.h"
#include "sound/WavInfo.h"

namespace {

class C_OpenSamplerInfo : public C_WavDataSamplerInfo {
 public:
  using C_WavDataSamplerInfo::C_WavDataSamplerInfo;
  using C_WavDataSamplerInfo::m_loops;
};

class WavDataSamplerInfo : public ::testing::Test {
 protected:
  void SetUp() override { m_wavInfo.SetInfoData(44100, 4000, 2, 16, 16, true); }
  bool Add(unsigned int dwID, unsigned int dwStart, unsigned int dwEnd) {
    return m_info.AddSampleLoop(dwID, LOOP_ALTERNATING, dwStart, dwEnd, 3, 4);
  }

  C_WavInfo m_wavInfo;
  C_OpenSamplerInfo m_info{&m_wavInfo};
};

C_Bytes Header(std::uint32_t dwLoops, std::uint32_t dwSamplerData) {
  return Words({1, 2, 3, 4, 5, 6, 7, dwLoops, dwSamplerData});
}

void SetHeader(C_WavDataSamplerInfo& info) {
  info.SetManufactureID(1);
  info.SetProductID(2);
  info.SetSamplePeriod(3);
  info.SetMIDIUnityNote(4);
  info.SetMIDIPitchFraction(5);
  info.SetSMPTEFormat(static_cast<tagSMPTEFormat>(6));
  info.SetSMPTEOffset(7);
}

void ExpectHeader(C_WavDataSamplerInfo& info) {
  EXPECT_EQ(info.GetManufactureID(), 1u);
  EXPECT_EQ(info.GetProductID(), 2u);
  EXPECT_EQ(info.GetSamplePeriod(), 3u);
  EXPECT_EQ(info.GetMIDIUnityNote(), 4u);
  EXPECT_EQ(info.GetMIDIPitchFraction(), 5u);
  EXPECT_EQ(static_cast<unsigned int>(info.GetSMPTEFormat()), 6u);
  EXPECT_EQ(info.GetSMPTEOffset(), 7u);
}

}  // namespace

TEST_F(WavDataSamplerInfo, NewInfo_IsAllZeros) {
  EXPECT_FALSE(m_info.IsValid());
  EXPECT_EQ(m_info.GetSampleLoopNum(), 0u);
  EXPECT_EQ(m_info.GetSamplerData(), 0u);
  EXPECT_EQ(m_info.GetChunkLength(), 36u);
  EXPECT_EQ(Saved(m_info), C_Bytes(36));
}

TEST_F(WavDataSamplerInfo, SamplerWithoutLoops_IsNotValid) {
  EXPECT_TRUE(Load(m_info, Header(0, 0)));
  ExpectHeader(m_info);
  EXPECT_FALSE(m_info.IsValid());
  Add(1, 2, 3);
  EXPECT_TRUE(m_info.IsValid());
}

TEST_F(WavDataSamplerInfo, HeaderAndLoops_SaveInFileOrder) {
  SetHeader(m_info);
  ExpectHeader(m_info);
  EXPECT_TRUE(m_info.AddSampleLoop(8, LOOP_BACKWARD, 9, 10, 11, 12));
  EXPECT_TRUE(Add(13, 14, 15));
  EXPECT_EQ(m_info.GetChunkLength(), 84u);
  EXPECT_EQ(Saved(m_info), Join({Header(2, 0), Words({8, 2, 9, 10, 11, 12, 13, 1, 14, 15, 3, 4})}));
}

TEST_F(WavDataSamplerInfo, OneLoopAndFiveBytesOfData_Take65Bytes) {
  Add(1, 2, 3);
  m_info.GetSamplerData(5);
  EXPECT_EQ(m_info.GetChunkLength(), 65u);
}

TEST_F(WavDataSamplerInfo, SamplerDataLength_IsSetThroughTheGettersName) {
  m_info.GetSamplerData(0xFFFFFFFFu);
  EXPECT_EQ(m_info.GetSamplerData(), 0xFFFFFFFFu);
}

TEST_F(WavDataSamplerInfo, SamplerOwnData_IsNotReadAndIsSavedAsZeros) {
  const C_Bytes loop = Words({8, 2, 9, 10, 11, 12});
  EXPECT_TRUE(Load(m_info, Join({Header(1, 5), loop, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE}})));
  EXPECT_EQ(m_info.GetSamplerData(), 5u);
  EXPECT_EQ(Saved(m_info), Join({Header(1, 5), loop, C_Bytes(5)}));
}

TEST_F(WavDataSamplerInfo, Loop_GivesEachField) {
  m_info.AddSampleLoop(8, LOOP_BACKWARD, 9, 10, 11, 12);
  I_WavDataSampleLoop* pLoop = m_info.GetSampleLoopByIndex(0);
  EXPECT_EQ(pLoop->GetCuePointID(), 8u);
  EXPECT_EQ(pLoop->GetType(), LOOP_BACKWARD);
  EXPECT_EQ(pLoop->GetStartSampleOffset(), 9u);
  EXPECT_EQ(pLoop->GetEndSampleOffset(), 10u);
  EXPECT_EQ(pLoop->GetFraction(), 11u);
  EXPECT_EQ(pLoop->GetPlayCount(), 12u);
}

TEST_F(WavDataSamplerInfo, UnknownLoopType_IsKept) {
  EXPECT_TRUE(Load(m_info, Join({Header(1, 0), Words({8, 0xFFFFFFFFu, 9, 10, 11, 12})})));
  EXPECT_EQ(static_cast<unsigned int>(m_info.GetSampleLoopByIndex(0)->GetType()), 0xFFFFFFFFu);
}

TEST_F(WavDataSamplerInfo, ByteOffsets_FollowTheFormat) {
  Add(1, 100, 199);
  I_WavDataSampleLoop* pLoop = m_info.GetSampleLoopByIndex(0);
  EXPECT_EQ(pLoop->GetStartByteOffset(), 400u);
  EXPECT_EQ(pLoop->GetEndByteOffset(), 796u);
  m_wavInfo.SetInfoData(44100, 4000, 1, 8, 8, false);
  EXPECT_EQ(pLoop->GetEndByteOffset(), 199u);
  m_wavInfo.SetInfoData(44100, 4000, 65535, 32, 65535, true);
  EXPECT_EQ(pLoop->GetStartByteOffset(), static_cast<unsigned int>(100ull * 8192 * 65535));
}

TEST_F(WavDataSamplerInfo, ByteOffset_Wraps) {
  Add(1, 0x40000001u, 0xFFFFFFFFu);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(0)->GetStartByteOffset(), 4u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(0)->GetEndByteOffset(), 0xFFFFFFFCu);
}

TEST_F(WavDataSamplerInfo, LoopCount_StaysTrueWhateverIsDone) {
  Add(1, 0, 0);
  Add(2, 0, 0);
  Add(1, 0, 0);
  EXPECT_EQ(m_info.GetSampleLoopNum(), 3u);
  EXPECT_TRUE(m_info.RemoveSampleLoopByIndex(0));
  EXPECT_EQ(m_info.GetSampleLoopNum(), 2u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(0)->GetCuePointID(), 2u);
  EXPECT_FALSE(m_info.RemoveSampleLoopByIndex(2));
  EXPECT_FALSE(m_info.RemoveSampleLoopByIndex(-1));
  EXPECT_EQ(Saved(m_info).size(), 36u + 48u);
  EXPECT_EQ(Saved(m_info)[28], 2);
  m_info.ResetSampleLoopInformation();
  EXPECT_EQ(m_info.GetSampleLoopNum(), 0u);
}

TEST_F(WavDataSamplerInfo, GetSampleLoopByIndex_OutsideTheList_Throws) {
  Add(1, 0, 0);
  EXPECT_THROW(m_info.GetSampleLoopByIndex(1), std::out_of_range);
  EXPECT_THROW(m_info.GetSampleLoopByIndex(-1), std::out_of_range);
}

TEST_F(WavDataSamplerInfo, ResetLoops_KeepsTheHeader) {
  SetHeader(m_info);
  Add(1, 0, 0);
  m_info.ResetSampleLoopInformation();
  ExpectHeader(m_info);
  EXPECT_FALSE(m_info.IsValid());
}

TEST_F(WavDataSamplerInfo, Reset_ZeroesTheHeaderToo) {
  SetHeader(m_info);
  m_info.GetSamplerData(8);
  Add(1, 0, 0);
  m_info.Reset();
  EXPECT_EQ(Saved(m_info), C_Bytes(36));
}

TEST_F(WavDataSamplerInfo, LoadInfo_ReplacesEverything) {
  Add(9, 9, 9);
  EXPECT_TRUE(Load(m_info, Join({Header(1, 0), Words({8, 2, 9, 10, 11, 12})})));
  ExpectHeader(m_info);
  EXPECT_EQ(m_info.GetSampleLoopNum(), 1u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(0)->GetCuePointID(), 8u);
}

TEST_F(WavDataSamplerInfo, LoopCountBeyondThePayload_KeepsTheWholeLoops) {
  const C_Bytes loop = Words({8, 2, 9, 10, 11, 12});
  for (const std::uint32_t dwLoops : {2u, 0x0AAAAAAAu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(Load(m_info, Join({Header(dwLoops, 0), loop, C_Bytes(23)})));
    EXPECT_EQ(m_info.GetSampleLoopNum(), 1u) << dwLoops;
    EXPECT_EQ(m_info.GetChunkLength(), 60u);
    EXPECT_TRUE(Load(m_info, Header(dwLoops, 0)));
    EXPECT_EQ(m_info.GetSampleLoopNum(), 0u) << dwLoops;
  }
}

TEST_F(WavDataSamplerInfo, SamplerDataBeyondThePayload_IsCutAndNeverBelieved) {
  for (const std::uint32_t dwData : {9u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(Load(m_info, Join({Header(0, dwData), C_Bytes(8)})));
    EXPECT_EQ(m_info.GetSamplerData(), 8u) << dwData;
    ResetLargestAllocation();
    EXPECT_EQ(Saved(m_info).size(), 44u);
    EXPECT_LT(LargestAllocation(), 1000u);
  }
}

TEST_F(WavDataSamplerInfo, SamplerDataBeyondThePayload_IsCutToTheBytesAfterTheLoops) {
  EXPECT_TRUE(Load(m_info, Join({Header(1, 100), Words({8, 2, 9, 10, 11, 12}), C_Bytes(7)})));
  EXPECT_EQ(m_info.GetSamplerData(), 7u);
  EXPECT_EQ(m_info.GetChunkLength(), 36u + 24 + 7);
}

TEST_F(WavDataSamplerInfo, ChunkTooLongFor32Bits_IsNotSaved) {
  Add(1, 0, 0);
  m_info.GetSamplerData(0xFFFFFFFFu - 60u);
  EXPECT_EQ(m_info.GetChunkLength(), 0xFFFFFFFFu);
  m_info.GetSamplerData(0xFFFFFFFFu - 59u);
  EXPECT_EQ(m_info.GetChunkLength(), 0u);
  C_RiffChunk chunk("smpl", 0);
  ResetLargestAllocation();
  EXPECT_FALSE(m_info.SaveInfo(&chunk));
  EXPECT_LT(LargestAllocation(), 1000u);
}

TEST_F(WavDataSamplerInfo, PayloadTooShortForTheHeader_ChangesNothing) {
  SetHeader(m_info);
  Add(1, 0, 0);
  for (const std::size_t cb : {0u, 1u, 4u, 35u}) EXPECT_TRUE(Load(m_info, C_Bytes(cb, 9)));
  ExpectHeader(m_info);
  EXPECT_EQ(m_info.GetSampleLoopNum(), 1u);
}

TEST_F(WavDataSamplerInfo, PayloadCutByTheFile_Fails) {
  SetHeader(m_info);
  C_CutChunk cut(36 + 24, Words({9, 9, 9, 9, 9, 9, 9, 1, 0}));
  EXPECT_FALSE(m_info.LoadInfo(cut.Get()));
  ExpectHeader(m_info);
}

TEST_F(WavDataSamplerInfo, SaveInfo_IntoAChunkOfAnotherLength_Fails) {
  C_RiffChunk shorter("smpl", 35);
  C_RiffChunk longer("smpl", 37);
  EXPECT_FALSE(m_info.SaveInfo(&shorter));
  EXPECT_FALSE(m_info.SaveInfo(&longer));
}

TEST_F(WavDataSamplerInfo, NullLoop_StopsSaving) {
  m_info.m_loops.Add(nullptr);
  EXPECT_DEATH(
      Saved(m_info),
      "^SaveInfo: WaveFileLib/WavDataInfo:[0-9]+: assertion failed: pSampleLoop != NULL\n$");
}

TEST_F(WavDataSamplerInfo, Renumber_ChangesOrRemovesLoops) {
  for (const unsigned int dwID : {1U, 2U, 3U}) {
    m_info.AddSampleLoop(dwID, LOOP_ALTERNATING, 10 * dwID, 20 * dwID, 4, 5);
  }
  m_info.Renumber([](unsigned int dwID) {
    return dwID == 2 ? std::nullopt : std::optional<unsigned int>(dwID + 100);
  });
  ASSERT_EQ(m_info.GetSampleLoopNum(), 2u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(0)->GetCuePointID(), 101u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(1)->GetCuePointID(), 103u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(1)->GetStartSampleOffset(), 30u);
  EXPECT_EQ(m_info.GetSampleLoopByIndex(1)->GetType(), LOOP_ALTERNATING);
}

TEST_F(WavDataSamplerInfo, Operations_StandInTheirSlots) {
  auto* pInfo = new C_WavDataSamplerInfo(&m_wavInfo);
  I_WavDataSamplerInfo* pIInfo = pInfo;
  EXPECT_FALSE(CallSlot<bool>(pIInfo, 0));
  for (unsigned int i = 0; i < 7; ++i) CallSlot<void>(pIInfo, 12 + i, 50 + i);
  for (unsigned int i = 0; i < 7; ++i) EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 3 + i), 50 + i);
  CallSlot<void>(pIInfo, 19, 5u);
  EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 11), 5u);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 21, 1u, 2u, 30u, 40u, 5u, 6u));
  EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 10), 1u);
  EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 23), 65u);
  auto* pLoop = CallSlot<I_WavDataSampleLoop*>(pIInfo, 20, 0);
  const unsigned int fields[] = {1, 2, 120, 160, 30, 40, 5, 6};
  for (unsigned int i = 0; i < 8; ++i) EXPECT_EQ(CallSlot<unsigned int>(pLoop, i), fields[i]);
  C_RiffChunk target("smpl", 65);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 25, &target));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 22, 0));
  EXPECT_EQ(pInfo->GetSampleLoopNum(), 0u);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 24, &target));
  EXPECT_EQ(pInfo->GetSampleLoopNum(), 1u);
  CallSlot<void>(pIInfo, 2);
  EXPECT_EQ(pInfo->GetSampleLoopNum(), 0u);
  EXPECT_EQ(pInfo->GetProductID(), 51u);
  CallSlot<void>(pIInfo, 1);
  EXPECT_EQ(pInfo->GetProductID(), 0u);
  CallSlot<void>(pIInfo, 27);
}

TEST_F(WavDataSamplerInfo, ReadThatFails_IsReported) {
  const C_Bytes payload = Join({Header(2, 0), C_Bytes(48)});
  const auto load = [this](I_RiffChunk& chunk) { return m_info.LoadInfo(&chunk); };
  EXPECT_EQ(CountReportedFailures(payload, load), 3);
}
