// SPDX-License-Identifier: Apache-2.0
//
// Sound files that claim more than they hold. Only frames that can be heard are counted, because a
// player waits for as long as the count says.
#include <algorithm>

#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr int kFlac = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
// The 36 bits of the sample count end here.
constexpr std::size_t kFlacCountEnd = 26;

class ClaimedFramesTest : public testing::Test {
 protected:
  Bytes Sound(int nFormat, std::size_t nFrames) {
    WriteSoundFile(m_folder.Path("good"), nFormat, 16000, 1, SweepWithNoise(nFrames, 16000));
    return m_folder.Read("good");
  }
  // The packets of a file of these bytes, or 999999999 when it does not open.
  UInt64 PacketsOf(const Bytes& bytes) {
    const AudioFileID audioFile = OpenSoundFile(m_folder.Write("x", bytes));
    const UInt64 qwPackets = audioFile != nullptr ? PacketCount(audioFile) : 999999999;
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
    return qwPackets;
  }
  C_TempFolder m_folder;
};

Bytes FlacThatClaims(Bytes flac, UInt64 qwFrames) {
  for (std::size_t i = 1; i <= 4; ++i) {
    flac.at(kFlacCountEnd - i) = static_cast<std::uint8_t>(qwFrames >> (8 * (i - 1)));
  }
  auto& byHigh = flac.at(kFlacCountEnd - 5);
  byHigh = static_cast<std::uint8_t>((byHigh & 0xF0U) | (qwFrames >> 32 & 0x0FU));
  return flac;
}

// Corrects the checksum of the last Ogg page, which begins at cbPage.
Bytes OggWithLastSum(Bytes ogg, std::size_t cbPage) {
  constexpr std::uint32_t kPolynomial = 0x04C11DB7;
  constexpr std::size_t kSumAt = 22;
  for (std::size_t i = 0; i < 4; ++i) ogg.at(cbPage + kSumAt + i) = 0;
  std::uint32_t dwSum = 0;
  for (std::size_t n = cbPage; n < ogg.size(); ++n) {
    dwSum ^= std::uint32_t{ogg[n]} << 24;
    for (int i = 0; i < 8; ++i) dwSum = dwSum << 1 ^ ((dwSum >> 31) * kPolynomial);
  }
  for (std::size_t i = 0; i < 4; ++i) {
    ogg.at(cbPage + kSumAt + i) = static_cast<std::uint8_t>(dwSum >> (8 * i));
  }
  return ogg;
}

TEST_F(ClaimedFramesTest, AFlacFile_HasItsFramesWhateverItClaims) {
  const Bytes flac = Sound(kFlac, 5000);
  EXPECT_EQ(PacketsOf(flac), 5000U);
  for (const UInt64 qwClaim : {UInt64{5001}, UInt64{50000}, UInt64{0x7FFFFFFF},
                               UInt64{0x1'0000'1388}, UInt64{0xF'FFFF'FFFF}, UInt64{0}}) {
    EXPECT_EQ(PacketsOf(FlacThatClaims(flac, qwClaim)), 5000U) << qwClaim;
  }
}

TEST_F(ClaimedFramesTest, AFlacFileThatIsCut_HasTheFramesThatAreThere) {
  Bytes flac = Sound(kFlac, 20000);
  flac.resize(flac.size() / 2);
  const UInt64 qwThere = PacketsOf(flac);
  // Only whole blocks of 4096 frames count.
  EXPECT_EQ(qwThere % 4096, 0U);
  EXPECT_GE(qwThere, 4096U);
  EXPECT_LE(qwThere, 12288U);
}

// Counting a large file would take long, so its claim is believed if the last frame is there.
TEST_F(ClaimedFramesTest, ALargeFlacFile_IsCountedOnlyWhereItsLastFrameIsMissing) {
  constexpr std::size_t kMany = 150000;
  Bytes flac = Sound(kFlac, kMany);
  ASSERT_GT(flac.size(), std::size_t{128} * 1024);
  EXPECT_EQ(PacketsOf(flac), kMany);
  EXPECT_EQ(PacketsOf(FlacThatClaims(flac, kMany + 100000)), kMany);
  flac.resize(flac.size() - 20000);
  const UInt64 qwThere = PacketsOf(flac);
  EXPECT_GT(qwThere, kMany / 2);
  EXPECT_LT(qwThere, kMany);
}

TEST_F(ClaimedFramesTest, AFlacHeadWithoutFrames_HasNone) {
  Bytes flac = FlacThatClaims(Sound(kFlac, 5000), 0xFFFFFFFF);
  const Bytes sync = {0xFF, 0xF8};
  flac.erase(std::search(flac.begin() + 42, flac.end(), sync.begin(), sync.end()), flac.end());
  EXPECT_EQ(PacketsOf(flac), 0U);
}

TEST_F(ClaimedFramesTest, FlacFileAfterATag_IsRecognised) {
  Bytes tagged = {'I', 'D', '3', 3, 0, 0, 0, 0, 0, 5, 1, 2, 3, 4, 5};
  const Bytes flac = Sound(kFlac, 777);
  tagged.insert(tagged.end(), flac.begin(), flac.end());
  EXPECT_EQ(PacketsOf(tagged), 777U);
}

TEST_F(ClaimedFramesTest, FlacPackets_AreNotHandedOut) {
  const AudioFileID audioFile = OpenSoundFile(m_folder.Write("x", Sound(kFlac, 777)));
  EXPECT_EQ(FormatOf(audioFile).mFormatID, OSType{kAudioFormatFLAC});
  std::int16_t nSample = 0;
  UInt32 cbData = sizeof nSample;
  UInt32 dwPackets = 1;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, 0, &dwPackets, &nSample),
            kAudioFileOperationNotSupportedError);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(ClaimedFramesTest, DifferenceCodedAiff_IsCountedToo) {
  const Bytes aiff = Sound(SF_FORMAT_AIFF | SF_FORMAT_DWVW_16, 3000);
  EXPECT_EQ(PacketsOf(aiff), 3000U);
  Bytes liar = aiff;
  const std::string strComm = "COMM";
  const auto itComm = std::search(liar.begin(), liar.end(), strComm.begin(), strComm.end());
  ASSERT_NE(itComm, liar.end());
  std::fill_n(itComm + 10, 4, std::uint8_t{0x7F});
  const UInt64 qwThere = PacketsOf(liar);
  EXPECT_GE(qwThere, 3000U);
  EXPECT_LE(qwThere, UInt64{8} * aiff.size()) << "no more than a bit each";
}

TEST_F(ClaimedFramesTest, WavFilesThatClaimGigabytes_HaveTheFramesThatAreThere) {
  Bytes wav = Sound(SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1000);
  for (const std::size_t cbAt : {4U, 40U}) {
    std::fill_n(wav.begin() + static_cast<std::ptrdiff_t>(cbAt), 4, std::uint8_t{0xFF});
  }
  EXPECT_EQ(PacketsOf(wav), 1000U);
  // 64-bit sizes of the file, the data and the frames.
  Bytes rf64 = Sound(SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 1000);
  ASSERT_EQ(PacketsOf(rf64), 1000U);
  const std::string strSizes = "ds64";
  const auto itSizes = std::search(rf64.begin(), rf64.end(), strSizes.begin(), strSizes.end());
  ASSERT_NE(itSizes, rf64.end());
  for (const int nField : {0, 8, 16}) *(itSizes + 8 + nField + 4) = 0x7F;
  EXPECT_EQ(PacketsOf(rf64), 1000U);
}

// The whole sound is on the page that makes the claim.
TEST_F(ClaimedFramesTest, AShortOggFile_HasItsFramesWhateverItClaims) {
  Bytes ogg = Sound(SF_FORMAT_OGG | SF_FORMAT_VORBIS, 20000);
  EXPECT_EQ(PacketsOf(ogg), 20000U);
  const std::string strPage = "OggS";
  const auto itPage = std::find_end(ogg.begin(), ogg.end(), strPage.begin(), strPage.end());
  ASSERT_NE(itPage, ogg.end());
  const auto cbPage = static_cast<std::size_t>(itPage - ogg.begin());
  for (const std::size_t nByte : {2U, 7U}) {
    Bytes liar = ogg;
    liar.at(cbPage + 6 + nByte) = 0x40;
    const UInt64 qwThere = PacketsOf(OggWithLastSum(liar, cbPage));
    EXPECT_GE(qwThere, 20000U);
    EXPECT_LE(qwThere, 20000U + 8192U) << "no more than the rest of a block";
  }
}

TEST_F(ClaimedFramesTest, ASphereFile_HasTheFramesThatAreThere) {
  const Bytes sphere = Sound(SF_FORMAT_NIST | SF_FORMAT_PCM_16, 1000);
  EXPECT_EQ(PacketsOf(sphere), 1000U);
  Bytes liar = sphere;
  const std::string strCount = "sample_count -i 1000";
  const auto itCount = std::search(liar.begin(), liar.end(), strCount.begin(), strCount.end());
  ASSERT_NE(itCount, liar.end());
  std::fill_n(itCount + 16, 4, std::uint8_t{'9'});
  EXPECT_EQ(PacketsOf(liar), 1000U);
}

// The file library knows these kinds. When such a file is damaged, it prints comments to standard
// output, among the lines of the player.
TEST_F(ClaimedFramesTest, KindsThatNobodyPlays_AreUnsupportedWithoutAWord) {
  testing::internal::CaptureStdout();
  Bytes dump = Sound(SF_FORMAT_SDS | SF_FORMAT_PCM_16, 3000);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("x", dump)), kAudioFileUnsupportedFileTypeError);
  std::fill_n(dump.begin() + 9, 4, std::uint8_t{0xFF});
  EXPECT_EQ(StatusOfOpening(m_folder.Write("x", dump)), kAudioFileUnsupportedFileTypeError);
  for (const int nType : {SF_FORMAT_PAF, SF_FORMAT_VOC, SF_FORMAT_MAT5}) {
    EXPECT_EQ(StatusOfOpening(m_folder.Write("x", Sound(nType | SF_FORMAT_PCM_16, 100))),
              kAudioFileUnsupportedFileTypeError);
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
