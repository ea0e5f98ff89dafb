// SPDX-License-Identifier: Apache-2.0
//
// Loading a file takes the memory of the sound and little more, and saving one takes little memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "CompressedBytes.h"
#include "CountedWork.h"
#include "ExampleSound.h"
#include "SpBytes.h"
#include "TempFolder.h"
#include "TestSound.h"
#include "TestVoice.h"
#include "WavFileFormat.h"
#include "WavFileObject.h"

namespace {

constexpr std::size_t kLittle = 1U << 20;
// Long enough that a second copy of the sound, or of a sixteenth of it, would be seen.
constexpr std::size_t kLong = 24U << 20;

struct S_Peaks {
  std::size_t cbLoad = 0;
  std::size_t cbSave = 0;
};

class FileMemory : public testing::Test {
 protected:
  // The memory that loading takes beyond the sound, and that saving it again as eType takes.
  S_Peaks PeaksOf(const std::string& strPath, bool bKeepEncoded, tagAudioFileType eType,
                  bool bForceEncode) {
    C_WavFileFormat format;
    const C_CountedWork loading;
    const C_WavFilePtr file(
        format.CreateWavFile(strPath.c_str(), true, bKeepEncoded, nullptr, nullptr));
    S_Peaks peaks{loading.Done().cbPeak, 0};
    EXPECT_NE(file, nullptr);
    if (file == nullptr) return peaks;
    I_WavData& sound = *file->GetWavData();
    const std::size_t cbSound = std::size_t{sound.GetBufferLength()} + sound.GetEncBufferLen();
    EXPECT_GE(peaks.cbLoad, cbSound) << "the memory is not counted";
    peaks.cbLoad -= cbSound;
    const C_CountedWork saving;
    EXPECT_TRUE(
        sound.Convert(eType, m_folder.Path("out").c_str(), true, false, nullptr, bForceEncode, 0));
    peaks.cbSave = saving.Done().cbPeak;
    return peaks;
  }
  void ExpectLittle(const S_Peaks& peaks) {
    EXPECT_LT(peaks.cbLoad, kLittle);
    EXPECT_LT(peaks.cbSave, kLittle);
  }
  std::string Pcm(std::uint16_t wBits, std::uint16_t wChannels, std::size_t cb) {
    return m_folder.Write("in", C_RiffBytes("WAVE")
                                    .Chunk("fmt ", FmtBytes(1, wChannels, 16000, wBits))
                                    .Chunk("data", C_Bytes(cb, 3))
                                    .Take());
  }

  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_F(FileMemory, PcmOfEveryWidth_IsLoadedAndSavedWithoutACopy) {
  for (const std::uint16_t wBits : std::initializer_list<std::uint16_t>{8, 16, 24, 32}) {
    SCOPED_TRACE(wBits);
    ExpectLittle(PeaksOf(Pcm(wBits, 2, kLong), true, AUDIO_FILE_WAVE, false));
  }
}

TEST_F(FileMemory, EveryCompressedKind_IsDecodedIntoTheSound) {
  for (S_Blocks blocks : OneOfEachKind()) {
    SCOPED_TRACE(blocks.wTag);
    const std::string strPath =
        m_folder.Write("in", CompressedWav(blocks, C_Bytes(kLong / 4 / 24 * 24, 1)).Take());
    ExpectLittle(PeaksOf(strPath, true, AUDIO_FILE_WAVE, false));
  }
}

TEST_F(FileMemory, MonoAndStereoOfAnyWidth_AreEncodedForKestrelInPieces) {
  for (const std::uint16_t wBits : std::initializer_list<std::uint16_t>{8, 16}) {
    for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2}) {
      SCOPED_TRACE(testing::Message() << wBits << " bits, " << wChannels);
      const std::string strPath = Pcm(wBits, wChannels, std::size_t{2} << 20);
      ExpectLittle(PeaksOf(strPath, true, AUDIO_FILE_KESTREL, true));
    }
  }
}

// Ten minutes at 8 kHz, and the same samples at 48 kHz, where blocks are longest. Two blocks are
// held at a time.
TEST_F(FileMemory, SoundsOfAnyLength_AreEncodedForHeronBlockByBlock) {
  auto samples = TestVoice(std::size_t{60} * 8000);
  const std::size_t nOnce = samples.size();
  samples.resize(10 * nOnce);
  for (std::size_t n = nOnce; n < samples.size(); ++n) samples[n] = samples[n - nOnce];
  for (const auto& [dwRate, cbMost] :
       {std::pair{8000U, kLittle}, std::pair{48000U, 7 * kLittle / 2}}) {
    for (const tagAudioFileType eType : {AUDIO_FILE_HERON_2BIT, AUDIO_FILE_HERON_6BIT}) {
      SCOPED_TRACE(testing::Message() << dwRate << " Hz, " << eType);
      const C_SoundPtr sound = MonoSound(samples, dwRate);
      const C_CountedWork encoding;
      EXPECT_TRUE(
          sound->Convert(eType, m_folder.Path("out").c_str(), true, false, nullptr, true, 0));
      EXPECT_LT(encoding.Done().cbPeak, cbMost);
    }
  }
}

TEST_F(FileMemory, CodecFiles_TakeTheSoundAndItsEncodedForm) {
  for (const tagAudioFileType eType : {AUDIO_FILE_KESTREL, AUDIO_FILE_HERON_4BIT}) {
    SCOPED_TRACE(eType);
    const C_SoundPtr sound = ExampleSound({}, 600'000);
    const std::string strStream = m_folder.Path("stream");
    ASSERT_TRUE(sound->Convert(eType, strStream.c_str(), true, false, nullptr, true, 0));
    const C_Bytes bytes = C_SpBytes()
                              .ID(static_cast<std::uint16_t>(eType))
                              .Freq(16000)
                              .Stream(m_folder.Read("stream"))
                              .Take();
    ExpectLittle(PeaksOf(m_folder.Write("in", bytes), true, eType, false));
    const std::string strContainer = m_folder.Path("container");
    ASSERT_TRUE(sound->Convert(eType, strContainer.c_str(), false, false, nullptr, true, 0));
    ExpectLittle(PeaksOf(strContainer, false, eType, false));
    ExpectLittle(PeaksOf(strContainer, true, AUDIO_FILE_WAVE, false));
  }
}

}  // namespace
