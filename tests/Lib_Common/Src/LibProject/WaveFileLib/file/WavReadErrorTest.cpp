// SPDX-License-Identifier: Apache-2.0
//
// Compressed WAV files that cannot be read to their end.
#include <gtest/gtest.h>

#include "CompressedBytes.h"
#include "FaultyIo.h"
#include "FolderTest.h"
#include "file/WavFile.h"
#include "sound/WavDataBuffer.h"

namespace {

using WavReadError = C_FolderTest;

TEST_F(WavReadError, WhileSamplesAreDecoded_LeavesNothingInTheSound) {
  S_Blocks blocks = OneOfEachKind().front();
  const C_Bytes encoded(std::size_t{blocks.wBlockAlign} * 400);
  Write("adpcm", CompressedWav(blocks, encoded).Take());
  int nFailed = 0;
  for (int nCall = 1;; ++nCall) {
    C_WavFile file;
    C_FaultyIo faults({.nCall = nCall});
    const bool bLoaded = file.LoadByName(Path("adpcm").c_str(), false, nullptr, nullptr);
    faults.Stop();
    if (!faults.WasHit()) break;
    if (bLoaded || file.GetWavData() == nullptr) continue;
    ++nFailed;
    auto* const pBuffer = dynamic_cast<C_WavDataBuffer*>(file.GetWavData()->GetIWaveDataBuffer());
    ASSERT_NE(pBuffer, nullptr);
    EXPECT_EQ(pBuffer->GetLength(), 0U) << nCall;
  }
  EXPECT_GT(nFailed, 3);
}

}  // namespace
