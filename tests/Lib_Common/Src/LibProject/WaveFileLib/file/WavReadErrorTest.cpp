// SPDX-License-Identifier: Apache-2.0
//
// Sounds that cannot be read to their end. What nobody has filled is not in the sound then, so that
// no later call can write it into a file.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "FaultyIo.h"
#include "FolderTest.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"
#include "file/WavFile.h"
#include "sound/WavDataBuffer.h"

namespace {

// More than is read ahead.
constexpr std::size_t kFrames = 9000;

class WavReadError : public C_FolderTest {
 protected:
  // Lets each call fail in turn. What fails must leave a sound without samples. Returns how many
  // loads failed while there was a sound.
  template <typename File>
  int CountEmptySounds(const std::string& strName, bool bKeepEncoded = false) const {
    int nFailed = 0;
    for (int nCall = 1;; ++nCall) {
      File file;
      C_FaultyIo faults({.nCall = nCall});
      const bool bLoaded = file.LoadByName(Path(strName).c_str(), bKeepEncoded, nullptr, nullptr);
      faults.Stop();
      if (!faults.WasHit()) break;
      if (bLoaded || file.GetWavData() == nullptr) continue;
      ++nFailed;
      auto* const pBuffer = dynamic_cast<C_WavDataBuffer*>(file.GetWavData()->GetIWaveDataBuffer());
      EXPECT_EQ(pBuffer->GetLength(), 0U) << nCall;
      const std::string strTarget = Path("target");
      EXPECT_FALSE(file.Convert(AUDIO_FILE_WAVE, strTarget.c_str(), false, false, nullptr, true, 0))
          << nCall;
    }
    return nFailed;
  }
  void Make(const std::string& strName, tagAudioFileType eType, bool bEncode) const {
    ASSERT_TRUE(ExampleSound({}, kFrames)
                    ->Convert(eType, Path(strName).c_str(), bEncode, false, nullptr, true, 0));
  }
};

TEST_F(WavReadError, WhileSamplesAreDecoded_LeavesNothingInTheSound) {
  S_Blocks blocks = OneOfEachKind().front();
  const C_Bytes encoded(std::size_t{blocks.wBlockAlign} * 400);
  Write("adpcm", CompressedWav(blocks, encoded).Take());
  EXPECT_GT(CountEmptySounds<C_WavFile>("adpcm"), 3);
}

TEST_F(WavReadError, WhileStoredSamplesAreRead_LeavesNothingInTheSound) {
  Make("wave", AUDIO_FILE_WAVE, false);
  EXPECT_GT(CountEmptySounds<C_WavFile>("wave"), 2);
}

TEST_F(WavReadError, WhileSamplesOfAContainerAreRead_LeavesNothingInTheSound) {
  Make("container", AUDIO_FILE_KESTREL, false);
  EXPECT_GT(CountEmptySounds<C_KestrelFile>("container", true), 3);
}

TEST_F(WavReadError, WhileAStreamIsDecoded_LeavesNothingInTheSound) {
  Make("kestrel", AUDIO_FILE_KESTREL, true);
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(16000);
  ASSERT_TRUE(PrependSpHeader(header, Path("kestrel").c_str()));
  EXPECT_GT(CountEmptySounds<C_KestrelFile>("kestrel"), 3);
}

}  // namespace
