// SPDX-License-Identifier: Apache-2.0
//
// RIFF files when memory runs out.
#include <gtest/gtest.h>

#include <new>

#include "FaultyNew.h"
#include "RiffFile.h"
#include "RiffFixture.h"
#include "chunk/WavDataExtraChunkInfo.h"

namespace {

using RiffMemory = C_RiffFixture;

}  // namespace

TEST_F(RiffMemory, PayloadThatFoundNoMemory_IsReadOnceThereIsSome) {
  C_RiffFile file;
  ASSERT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3}).Take()));
  std::uint8_t abyTarget[3] = {};
  C_FaultyNew faulty(1, false);
  EXPECT_THROW(file.GetChunkAt(0)->GetData(abyTarget, 3, 0), std::bad_alloc);
  faulty.Stop();
  EXPECT_EQ(PayloadOf(file.GetChunkAt(0)), (C_Bytes{1, 2, 3}));
}

TEST_F(RiffMemory, OpeningAndKeepingChunks_LosesNothingWhicheverAllocationFails) {
  const auto strPath =
      m_folder.Write("in", C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3}).Chunk("bbbb", {4}).Take());
  const auto nDescriptors = OpenDescriptors();
  for (int nCall = 1;; ++nCall) {
    const auto nLiving = C_FaultyNew::Living();
    bool bHit = false;
    {
      C_RiffFile file;
      C_WavDataExtraChunkInfo info;
      C_FaultyNew faulty(nCall, false);
      try {
        EXPECT_TRUE(file.Open(strPath.c_str(), "WAVE"));
        EXPECT_TRUE(info.AddRiffChunk("aaaa", file.GetChunkAt(0)));
        file.AddChunk("cccc", 1);
      } catch (const std::bad_alloc&) {
        bHit = true;
      }
      faulty.Stop();
      EXPECT_EQ(bHit, faulty.WasHit());
    }
    EXPECT_EQ(C_FaultyNew::Living(), nLiving) << nCall;
    EXPECT_EQ(OpenDescriptors(), nDescriptors) << nCall;
    if (!bHit) {
      EXPECT_GT(nCall, 8);
      break;
    }
  }
}
