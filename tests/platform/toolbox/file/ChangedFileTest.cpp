// SPDX-License-Identifier: Apache-2.0
//
// Files that change while a unit plays them: it goes on with what is left, and is silent after
// that.
#include <filesystem>

#include "OfflinePlayer.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

constexpr std::size_t kFrames = 6000;
constexpr std::size_t kHeard = 1024;
constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

class ChangedFileTest : public testing::Test {
 protected:
  // Plays the first frames of the file.
  void Begin(int nFormat = SF_FORMAT_WAV | SF_FORMAT_PCM_16) {
    WriteSoundFile(m_strPath, nFormat, 44100, 1, SweepWithNoise(kFrames, 44100));
    {
      C_OfflinePlayer undisturbed;
      undisturbed.UseFile(m_strPath);
      undisturbed.Play(kFrames);
      m_whole = undisturbed.Render(kFrames)[0];
    }
    m_player.UseFile(m_strPath);
    m_player.Play(kFrames);
    m_heard = m_player.Render(kHeard)[0];
  }
  // Plays on past the end.
  void GoOn() {
    const auto rest = m_player.Render(kFrames)[0];
    m_heard.insert(m_heard.end(), rest.begin(), rest.end());
  }
  void ExpectWholeSound() {
    GoOn();
    EXPECT_TRUE(std::equal(m_whole.begin(), m_whole.end(), m_heard.begin()));
    EXPECT_TRUE(IsSilent(m_heard.begin() + kFrames, m_heard.end()));
  }

  C_TempFolder m_folder;
  const std::string m_strPath = m_folder.Path("a");
  C_OfflinePlayer m_player;
  std::vector<float> m_whole;
  std::vector<float> m_heard;
};

TEST_F(ChangedFileTest, Removed_SoundsToItsEnd) {
  Begin();
  std::filesystem::remove(m_strPath);
  ExpectWholeSound();
}

TEST_F(ChangedFileTest, ReplacedByAnother_SoundsToItsOwnEnd) {
  Begin();
  WriteSoundFile(m_folder.Path("b"), SF_FORMAT_WAV | SF_FORMAT_PCM_24, 8000, 2,
                 SweepWithNoise(100, 8000, 2));
  std::filesystem::rename(m_folder.Path("b"), m_strPath);
  ExpectWholeSound();
}

TEST_F(ChangedFileTest, Grown_EndsWhereItEnded) {
  Begin();
  auto bytes = m_folder.Read("a");
  bytes.insert(bytes.end(), 100000, 0x11);
  m_folder.Write("a", bytes);
  ExpectWholeSound();
}

TEST_F(ChangedFileTest, ShrunkFile_IsSilentAfterItsNewEnd) {
  Begin();
  std::filesystem::resize_file(m_strPath, 44 + 3000 * 2);
  GoOn();
  EXPECT_TRUE(std::equal(m_whole.begin(), m_whole.begin() + 3000, m_heard.begin()));
  EXPECT_TRUE(IsSilent(m_heard.begin() + 3000, m_heard.end()));
}

TEST_F(ChangedFileTest, ShrunkAndGrownAgain_IsSilentFromThereOn) {
  Begin();
  std::filesystem::resize_file(m_strPath, 44);
  m_player.Render(512);
  std::filesystem::resize_file(m_strPath, 44 + kFrames * 2);
  GoOn();
  EXPECT_TRUE(IsSilent(m_heard.begin() + kHeard, m_heard.end()));
}

TEST_F(ChangedFileTest, Emptied_IsSilentAtOnce) {
  Begin();
  std::filesystem::resize_file(m_strPath, 0);
  GoOn();
  EXPECT_TRUE(std::equal(m_whole.begin(), m_whole.begin() + kHeard, m_heard.begin()));
  EXPECT_TRUE(IsSilent(m_heard.begin() + kHeard, m_heard.end()));
}

TEST_F(ChangedFileTest, AnEmptiedFile_HasNoPacketsToRead) {
  Begin();
  std::filesystem::resize_file(m_strPath, 0);
  std::int16_t nSample = 0;
  UInt32 cbData = sizeof nSample;
  UInt32 dwPackets = 1;
  AudioFileReadPacketData(m_player.File(), 0, &cbData, nullptr, kFrames - 1, &dwPackets, &nSample);
  EXPECT_EQ(dwPackets, 0U);
  EXPECT_EQ(cbData, 0U);
}

// Decoders hold back some of the file, so that silence comes a little later.
TEST_F(ChangedFileTest, CompressedKindsThatShrink_AreSilentAtTheEnd) {
  for (const int nFormat :
       {kMp3, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM,
        SF_FORMAT_WAV | SF_FORMAT_GSM610, SF_FORMAT_FLAC | SF_FORMAT_PCM_16}) {
    WriteSoundFile(m_strPath, nFormat, 44100, 1, SweepWithNoise(60000, 44100));
    C_OfflinePlayer player;
    player.UseFile(m_strPath);
    player.Play(60000);
    player.Render(kHeard);
    std::filesystem::resize_file(m_strPath, 100);
    const auto rest = player.Render(70000)[0];
    EXPECT_TRUE(IsSilent(rest.begin() + 30000, rest.end())) << std::hex << nFormat;
  }
}

TEST_F(ChangedFileTest, CompressedKindsThatAreOverwritten_EndWithoutHarm) {
  for (const int nFormat :
       {kMp3, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM,
        SF_FORMAT_FLAC | SF_FORMAT_PCM_16}) {
    WriteSoundFile(m_strPath, nFormat, 44100, 1, SweepWithNoise(60000, 44100));
    C_OfflinePlayer player;
    player.UseFile(m_strPath);
    player.Play(60000);
    player.Render(kHeard);
    auto bytes = m_folder.Read("a");
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0xFF});
    m_folder.Write("a", bytes);
    const auto rest = player.Render(70000)[0];
    EXPECT_TRUE(IsSilent(rest.begin() + 60000, rest.end())) << std::hex << nFormat;
  }
}

}  // namespace
