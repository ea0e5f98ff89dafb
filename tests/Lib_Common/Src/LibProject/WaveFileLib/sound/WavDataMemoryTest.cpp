// SPDX-License-Identifier: Apache-2.0
//
// What sounds do when memory runs out. They must also free everything that they have allocated.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "FaultyNew.h"
#include "SampleValues.h"
#include "sound/WavData.h"

namespace {

constexpr S_Format kStereo{2, 16, 16, true, 8000};

struct S_Operation {
  const char* pszName;
  std::function<void(C_WavData&)> call;
};

void DropSound(I_WavData* pSound) {
  if (pSound != nullptr) pSound->Release();
}

const std::vector<S_Operation>& Operations() {
  static const std::vector<S_Operation> operations = {
      {"AllocBuffer", [](C_WavData& s) { s.AllocBuffer(100); }},
      {"SetBuffer", [](C_WavData& s) { s.SetBuffer("abcd", 4); }},
      {"SetEncBuffer", [](C_WavData& s) { s.SetEncBuffer("abcd", 4); }},
      {"Clone", [](C_WavData& s) { DropSound(s.Clone()); }},
      {"ConvertBits", [](C_WavData& s) { s.ConvertBits(8, 8, false, true); }},
      {"CreateBitsConvertedData",
       [](C_WavData& s) { DropSound(s.CreateBitsConvertedData(8, 8, false, true)); }},
      {"CreateChannelData", [](C_WavData& s) { DropSound(s.CreateChannelData(1, 0, 2)); }},
      {"ConvertToMono", [](C_WavData& s) { s.ConvertToMono(); }},
      {"ConvertToStereoWithSilence", [](C_WavData& s) { s.ConvertToStereoWithSilence(1); }},
      {"DetectSilence", [](C_WavData& s) { s.DetectSilence(2047, 0, true); }},
      {"AddSilenceSegment", [](C_WavData& s) { s.AddSilenceSegment(1, 3); }},
      {"AddUncompressRegion", [](C_WavData& s) { s.AddUncompressRegion(1, 3); }},
      {"MakeSilenceSegmentsMute", [](C_WavData& s) { s.MakeSilenceSegmentsMute(); }},
      {"CreateIterator", [](C_WavData& s) { s.GetIWaveDataBuffer()->CreateIterator(1, 0); }},
  };
  return operations;
}

// True when the operation ran out of memory.
bool RanOut(const S_Operation& operation, C_WavData& sound) {
  try {
    operation.call(sound);
  } catch (const std::bad_alloc&) {
    return true;
  }
  return false;
}

// Runs one operation on one sound, with the nCall-th allocation failing. True when there was such
// an allocation.
bool FailsAt(const S_Operation& operation, int nCall, bool bFromThenOn) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4, 5, 6}, kStereo);
  sound.AddSilenceSegment(0, 0);
  sound.AddSilenceSegment(2, 2);
  bool bHit = false;
  {
    C_FaultyNew faulty(nCall, bFromThenOn);
    const bool bRanOut = RanOut(operation, sound);
    faulty.Stop();
    bHit = faulty.WasHit();
    EXPECT_EQ(bRanOut, bHit) << operation.pszName << " " << nCall;
  }
  // Whatever happened, the sound can still be used.
  sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 0);
  sound.ApplyGain(2.0, 2.0);
  SetSound(sound, {7, 8});
  EXPECT_EQ(ValuesOf(sound), (C_Values{7, 8})) << operation.pszName << " " << nCall;
  return bHit;
}

TEST(WavDataMemory, EveryAllocationThatFails_IsReportedAndLeavesAUsableSound) {
  for (const S_Operation& operation : Operations()) {
    for (const bool bFromThenOn : {false, true}) {
      const std::ptrdiff_t nBefore = C_FaultyNew::Living();
      int nCall = 1;
      while (FailsAt(operation, nCall, bFromThenOn)) ++nCall;
      EXPECT_EQ(C_FaultyNew::Living(), nBefore) << operation.pszName;
      EXPECT_GT(nCall, 1) << operation.pszName << " allocates nothing";
      EXPECT_LT(nCall, 100) << operation.pszName;
    }
  }
}

TEST(WavDataMemory, CreateIterator_DeletesTheOneBefore) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  sound.GetIWaveDataBuffer()->CreateIterator(0, 0);
  const std::ptrdiff_t nWithOne = C_FaultyNew::Living();
  for (int i = 0; i < 10; ++i) sound.GetIWaveDataBuffer()->CreateIterator(1, 0);
  EXPECT_EQ(C_FaultyNew::Living(), nWithOne);
}

TEST(WavDataMemory, Edits_MakeNoIteratorThatStays) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, kStereo);
  const std::ptrdiff_t nBefore = C_FaultyNew::Living();
  sound.ApplyGain(1.5, 0.5);
  sound.RemoveDCOffset();
  sound.Normalize();
  EXPECT_EQ(C_FaultyNew::Living(), nBefore);
}

TEST(WavDataMemory, RemovedSegments_AreDeleted) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4});
  sound.AddSilenceSegment(0, 1);
  const std::ptrdiff_t nWithOne = C_FaultyNew::Living();
  for (unsigned int i = 0; i < 20; ++i) sound.AddSilenceSegment(0, 1);
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), 1);
  EXPECT_EQ(C_FaultyNew::Living(), nWithOne);
  sound.DetectSilenceRange(0, 100, 0, 3, 0, 0, true);
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), 0);
  EXPECT_EQ(C_FaultyNew::Living(), nWithOne - 1);
}

TEST(WavDataMemory, Sounds_GiveBackEverything) {
  const std::ptrdiff_t nBefore = C_FaultyNew::Living();
  {
    auto* pSound = new C_WavData();
    SetSound(*pSound, {1, 2, 3, 4}, kStereo);
    pSound->SetEncBuffer("abc", 3);
    pSound->AddSilenceSegment(0, 1);
    pSound->AddUncompressRegion(0, 1);
    pSound->GetEventTagMgr()->AddEvent(1, 1, 5, "an event with a long description", 0);
    AddAnnotations(*pSound);
    pSound->GetIWaveDataBuffer()->CreateIterator(0, 0);
    EXPECT_GT(C_FaultyNew::Living(), nBefore + 8);
    pSound->Release();
  }
  EXPECT_EQ(C_FaultyNew::Living(), nBefore);
}

}  // namespace
