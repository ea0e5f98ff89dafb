// SPDX-License-Identifier: Apache-2.0
//
// Sound files that begin with an ID3 tag. What comes after the tag opens and sounds as it does by
// itself, also when it is cut short.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"
#include "file/AudioFile.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kTagContents = 70;

Bytes Tagged(const Bytes& sound) {
  Bytes bytes = {'I', 'D', '3', 3, 0, 0, 0, 0, 0, kTagContents};
  bytes.resize(bytes.size() + kTagContents);
  bytes.insert(bytes.end(), sound.begin(), sound.end());
  return bytes;
}

class TaggedSoundTest : public testing::TestWithParam<int> {
 protected:
  std::shared_ptr<toolbox::C_AudioFile> Open(const char* pszName, const Bytes& bytes) {
    std::shared_ptr<toolbox::C_AudioFile> pFile;
    EXPECT_EQ(toolbox::C_AudioFile::Open(m_folder.Write(pszName, bytes), pFile), noErr);
    return pFile;
  }
  // Frames from the middle of the sound and from its start. In a stream that is cut there may be
  // none, because its decoder looks for the end.
  static std::vector<float> SomeOf(toolbox::C_AudioFile& file) {
    std::vector<float> frames;
    for (const SInt64 nFrom : {1500, 0}) {
      std::vector<float> piece(1000);
      piece.resize(file.ReadFrames(nFrom, piece.size(), piece.data()));
      frames.insert(frames.end(), piece.begin(), piece.end());
    }
    return frames;
  }
  void ExpectSameWithATag(const Bytes& bytes) {
    const auto pPlain = Open("plain", bytes);
    const auto pTagged = Open("tagged", Tagged(bytes));
    ASSERT_NE(pPlain, nullptr);
    ASSERT_NE(pTagged, nullptr);
    EXPECT_EQ(pTagged->PacketCount(), pPlain->PacketCount());
    EXPECT_EQ(pTagged->Format().mFormatID, pPlain->Format().mFormatID);
    EXPECT_EQ(SomeOf(*pTagged), SomeOf(*pPlain));
  }

  C_TempFolder m_folder;
};

TEST_P(TaggedSoundTest, Sound_IsTheSameAfterATag) {
  WriteSoundFile(m_folder.Path("made"), GetParam(), 16000, 1, SweepWithNoise(20000, 16000));
  const Bytes bytes = m_folder.Read("made");
  EXPECT_EQ(SomeOf(*Open("whole", bytes)).size(), 2000U);
  ExpectSameWithATag(bytes);
  const auto nCut = static_cast<std::ptrdiff_t>(bytes.size() * 3 / 4);
  ExpectSameWithATag(Bytes(bytes.begin(), bytes.begin() + nCut));
}

INSTANTIATE_TEST_SUITE_P(
    All, TaggedSoundTest,
    testing::Values(SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM,
                    SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, SF_FORMAT_RF64 | SF_FORMAT_PCM_16,
                    SF_FORMAT_AIFF | SF_FORMAT_PCM_16, SF_FORMAT_AU | SF_FORMAT_PCM_16,
                    SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SF_FORMAT_OGG | SF_FORMAT_VORBIS,
                    SF_FORMAT_NIST | SF_FORMAT_PCM_16, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III),
    [](const auto& parameter) { return "Format" + std::to_string(parameter.param); });

}  // namespace
