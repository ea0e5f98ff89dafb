// SPDX-License-Identifier: Apache-2.0
//
// A container that cannot be read is not a container of another kind, and a sound that cannot be
// read holds no memory that nobody has filled.
#include <gtest/gtest.h>

#include <string>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "FaultyIo.h"
#include "FolderTest.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"
#include "file/WavFile.h"
#include "sound/WavDataBuffer.h"

namespace {

using VefReadError = C_FolderTest;

TEST_F(VefReadError, WhileItsTypeIsRead_DoesNotMakeItAKestrelContainer) {
  const std::string strPath = Path("heron");
  ASSERT_TRUE(ExampleSound({}, 160)->Convert(AUDIO_FILE_HERON_3BIT, strPath.c_str(), false, false,
                                             nullptr, true, 0));
  int nRefused = 0;
  for (int nCall = 1;; ++nCall) {
    C_Heron4BitFile heron;
    C_KestrelFile kestrel;
    bool bHeron = false;
    {
      const C_FaultyIo faults({.nCall = nCall});
      bHeron = heron.CheckFormat(strPath.c_str(), false);
    }
    C_FaultyIo faults({.nCall = nCall});
    EXPECT_FALSE(kestrel.CheckFormat(strPath.c_str(), false)) << nCall;
    faults.Stop();
    nRefused += bHeron ? 0 : 1;
    if (!faults.WasHit()) break;
  }
  EXPECT_GT(nRefused, 3);
}

TEST_F(VefReadError, WhileSamplesAreDecoded_LeavesNothingInTheSound) {
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
