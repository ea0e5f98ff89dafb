// SPDX-License-Identifier: Apache-2.0
//
// Small sound files with large claims. Opening one takes little memory, whatever it claims.
#include <algorithm>
#include <string>

#include "AllMemory.h"
#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"
#include "object/Room.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
// The service first makes sure of some memory. The rest is far more than any of these files needs,
// and far less than any of the claims.
constexpr std::size_t kLittle = toolbox::kLibraryRoom + std::size_t{2} * 1024 * 1024;

// The header of an ID3 tag with four equal size bytes.
Bytes TagHead(std::uint8_t bySize) {
  return {'I', 'D', '3', 3, 0, 0, bySize, bySize, bySize, bySize};
}

Bytes Joined(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class ClaimedMemoryTest : public testing::Test {
 protected:
  Bytes Sound(int nFormat) {
    WriteSoundFile(m_folder.Path("good"), nFormat, 16000, 1, SweepWithNoise(16000, 16000));
    return m_folder.Read("good");
  }
  // The packets of a file of these bytes, or 0 when it does not open.
  UInt64 PacketsOf(const Bytes& bytes) {
    const std::string strFile = m_folder.Write("x", bytes);
    ResetAllMemory();
    const AudioFileID audioFile = OpenSoundFile(strFile);
    EXPECT_LT(AllMemory(), kLittle);
    EXPECT_GT(AllMemory(), 0U);
    const UInt64 qwPackets = audioFile != nullptr ? PacketCount(audioFile) : 0;
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
    return qwPackets;
  }
  C_TempFolder m_folder;
};

TEST_F(ClaimedMemoryTest, ATagThatClaims256MiB_InAFileOf30Bytes_IsNoSound) {
  EXPECT_EQ(PacketsOf(Joined(TagHead(0x7F), Bytes(20))), 0U);
}

TEST_F(ClaimedMemoryTest, ATagThatClaimsMoreThanTheFile_IsPassedOver) {
  const Bytes mp3 = Sound(kMp3);
  const UInt64 qwFrames = PacketsOf(mp3);
  ASSERT_GT(qwFrames, 20U);
  for (const std::uint8_t bySize : Bytes{0x7F, 0x01}) {
    EXPECT_EQ(PacketsOf(Joined(TagHead(bySize), mp3)), qwFrames);
    EXPECT_EQ(PacketsOf(Joined(TagHead(bySize), Joined(Bytes(500, 'x'), mp3))), qwFrames);
    EXPECT_EQ(PacketsOf(Joined(TagHead(0), Joined(TagHead(bySize), mp3))), qwFrames);
  }
}

TEST_F(ClaimedMemoryTest, ATagBetweenFrames_EndsTheSoundWhereItClaimsTheRest) {
  const Bytes mp3 = Sound(kMp3);
  const UInt64 qwFrames = PacketsOf(mp3);
  EXPECT_EQ(PacketsOf(Joined(mp3, Joined(TagHead(0x7F), Bytes(20)))), qwFrames);
  EXPECT_GE(PacketsOf(Joined(mp3, Joined(TagHead(0x7F), mp3))), qwFrames);
}

TEST_F(ClaimedMemoryTest, AFlacBlockThatClaimsMoreThanTheFile_IsAnInvalidFile) {
  const Bytes flac = Sound(SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  EXPECT_EQ(PacketsOf(flac), 16000U);
  Bytes tag = TagHead(0);
  tag.back() = 20;
  tag.resize(30);
  EXPECT_EQ(PacketsOf(Joined(tag, flac)), 16000U);
  // The size fields of the first two blocks, of which the first has 34 bytes.
  for (const std::size_t cbAt : {std::size_t{5}, std::size_t{4 + 4 + 34 + 1}}) {
    Bytes bytes = flac;
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(cbAt), 3, std::uint8_t{0xFF});
    EXPECT_EQ(PacketsOf(bytes), 0U) << cbAt;
    EXPECT_EQ(StatusOfOpening(m_folder.Path("x")), kAudioFileInvalidFileError);
    EXPECT_EQ(PacketsOf(Joined(tag, bytes)), 0U);
  }
}

TEST_F(ClaimedMemoryTest, AFlacFileThatEndsInItsBlocks_IsAnInvalidFile) {
  const Bytes flac = Sound(SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  for (const std::ptrdiff_t cb : {4, 6, 8, 41, 42, 44}) {
    EXPECT_EQ(PacketsOf(Bytes(flac.begin(), flac.begin() + cb)), 0U) << cb;
  }
}

// Any four bytes of the head may be a size. What the first block of each kind needs is allowed.
TEST_F(ClaimedMemoryTest, LargeNumbersAnywhereInTheHead_NeverTakeMuchMemory) {
  constexpr std::size_t kHead = 120;
  for (const int nFormat :
       {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAVEX | SF_FORMAT_FLOAT,
        SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, SF_FORMAT_RF64 | SF_FORMAT_PCM_16,
        SF_FORMAT_AIFF | SF_FORMAT_PCM_16, SF_FORMAT_AU | SF_FORMAT_PCM_16,
        SF_FORMAT_CAF | SF_FORMAT_PCM_16, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, kMp3}) {
    const Bytes good = Sound(nFormat);
    for (std::size_t cbAt = 4; cbAt + 4 <= std::min(good.size(), kHead); cbAt += 2) {
      for (const Bytes& claim : {Bytes{0x0F, 0xFF, 0xFF, 0x7F}, Bytes{0xFF, 0xFF, 0xFF, 0x0F}}) {
        Bytes bytes = good;
        std::copy(claim.begin(), claim.end(), bytes.begin() + static_cast<std::ptrdiff_t>(cbAt));
        static_cast<void>(PacketsOf(bytes));
        ASSERT_FALSE(HasFailure()) << std::hex << nFormat << " at " << std::dec << cbAt;
      }
    }
  }
}

}  // namespace
