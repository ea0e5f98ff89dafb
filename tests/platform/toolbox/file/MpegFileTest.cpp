// SPDX-License-Identifier: Apache-2.0
//
// MPEG files as they are found in practice: after tags and junk, with false information frames, or
// cut.
#include <algorithm>
#include <array>
#include <string>

#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

// Counts MPEG frames by their headers, without the encoder's information frame. Layer 3 only.
UInt64 CountMpegFrames(const std::vector<std::uint8_t>& bytes) {
  constexpr std::array kVersion1Rates = {0,   32,  40,  48,  56,  64,  80, 96,
                                         112, 128, 160, 192, 224, 256, 320};
  constexpr std::array kVersion2Rates = {0,  8,  16, 24,  32,  40,  48, 56,
                                         64, 80, 96, 112, 128, 144, 160};
  constexpr std::array kSampleRates = {44100, 48000, 32000};
  UInt64 qwFrames = 0;
  for (std::size_t cbAt = 0; cbAt + 4 <= bytes.size();) {
    if (bytes[cbAt] != 0xFF || (bytes[cbAt + 1] & 0xE6) != 0xE2) {
      ++cbAt;
      continue;
    }
    const bool bVersion1 = (bytes[cbAt + 1] & 0x18) == 0x18;
    const auto nRateIndex = static_cast<std::size_t>(bytes[cbAt + 2] >> 4);
    const int nKilobits = bVersion1 ? kVersion1Rates.at(nRateIndex) : kVersion2Rates.at(nRateIndex);
    const int nRate = kSampleRates.at((bytes[cbAt + 2] >> 2) & 3) / (bVersion1 ? 1 : 2);
    const int cbFrame =
        (bVersion1 ? 144 : 72) * nKilobits * 1000 / nRate + (bytes[cbAt + 2] >> 1 & 1);
    const std::string frame(
        bytes.begin() + static_cast<std::ptrdiff_t>(cbAt),
        bytes.begin() + static_cast<std::ptrdiff_t>(
                            std::min(bytes.size(), cbAt + static_cast<std::size_t>(cbFrame))));
    if (frame.find("Xing") == std::string::npos && frame.find("Info") == std::string::npos) {
      ++qwFrames;
    }
    cbAt += static_cast<std::size_t>(cbFrame);
  }
  return qwFrames;
}

Bytes Joined(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// A tag of version 2.3 with this content.
Bytes TagOf(const Bytes& content) {
  Bytes tag = {'I', 'D', '3', 3, 0, 0};
  for (int nShift = 21; nShift >= 0; nShift -= 7) {
    tag.push_back(static_cast<std::uint8_t>(content.size() >> nShift & 0x7F));
  }
  return Joined(tag, content);
}

class MpegFileTest : public testing::Test {
 protected:
  // A second of 16 kHz mono.
  Bytes Mp3() {
    WriteSoundFile(m_folder.Path("a.mp3"), kMp3, 16000, 1, SweepWithNoise(16000, 16000));
    return m_folder.Read("a.mp3");
  }
  // The packets of a file of these bytes, or 0 when it does not open.
  UInt64 PacketsOf(const Bytes& bytes) {
    const AudioFileID audioFile = OpenSoundFile(m_folder.Write("x.mp3", bytes));
    const UInt64 qwPackets = audioFile != nullptr ? PacketCount(audioFile) : 0;
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
    return qwPackets;
  }
  C_TempFolder m_folder;
};

TEST_F(MpegFileTest, AnMp3File_HasItsMpegFramesAsPackets) {
  struct S_Case {
    int nRate;
    int nChannels;
    UInt32 dwSamplesPerFrame;
  };
  for (const S_Case& mp3 : {S_Case{16000, 1, 576}, S_Case{44100, 2, 1152}}) {
    const auto nFrames = static_cast<std::size_t>(mp3.nRate) * 2;
    WriteSoundFile(m_folder.Path("a.mp3"), kMp3, mp3.nRate, mp3.nChannels,
                   SweepWithNoise(nFrames, static_cast<unsigned>(mp3.nRate),
                                  static_cast<unsigned>(mp3.nChannels)));
    const AudioFileID audioFile = OpenSoundFile(m_folder.Path("a.mp3"));
    ASSERT_NE(audioFile, nullptr);
    EXPECT_EQ(PacketCount(audioFile), CountMpegFrames(m_folder.Read("a.mp3")));
    const auto format = FormatOf(audioFile);
    EXPECT_EQ(format.mSampleRate, static_cast<double>(mp3.nRate));
    EXPECT_EQ(format.mFormatID, OSType{kAudioFormatMPEGLayer3});
    EXPECT_EQ(format.mFramesPerPacket, mp3.dwSamplesPerFrame);
    EXPECT_EQ(format.mChannelsPerFrame, static_cast<UInt32>(mp3.nChannels));
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
  }
}

TEST_F(MpegFileTest, Mp3FileAfterTags_IsRecognised_AndTagsOnlyAreNot) {
  WriteSoundFile(m_folder.Path("a.mp3"), kMp3, 16000, 1, SweepWithNoise(8000, 16000));
  const auto mp3 = m_folder.Read("a.mp3");
  // Two tags: each has 10 bytes of header; the first has 130 bytes of content, the second none.
  std::vector<std::uint8_t> tags = {'I', 'D', '3', 4, 0, 0, 0, 0, 1, 2};
  tags.resize(140);
  const std::vector<std::uint8_t> second = {'I', 'D', '3', 4, 0, 0, 0, 0, 0, 0};
  tags.insert(tags.end(), second.begin(), second.end());
  auto tagged = tags;
  tagged.insert(tagged.end(), mp3.begin(), mp3.end());
  const AudioFileID audioFile = OpenSoundFile(m_folder.Write("tagged.mp3", tagged));
  ASSERT_NE(audioFile, nullptr);
  EXPECT_EQ(PacketCount(audioFile), CountMpegFrames(mp3));
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("t.mp3", tags)), kAudioFileUnsupportedFileTypeError);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("h.mp3", {mp3.begin(), mp3.begin() + 4})),
            kAudioFileUnsupportedFileTypeError);
}

// Decoders like to comment on damage. Users of a pipeline would take that for an error.
TEST_F(MpegFileTest, DamagedMp3Files_AreOpenedWithoutAWordOnStandardError) {
  WriteSoundFile(m_folder.Path("a.mp3"), kMp3, 16000, 1, SweepWithNoise(16000, 16000));
  const auto good = m_folder.Read("a.mp3");
  auto cut = good;
  cut.resize(good.size() * 2 / 3);
  auto broken = good;
  std::fill_n(broken.begin() + static_cast<std::ptrdiff_t>(good.size() / 2), 100, std::uint8_t{0});
  testing::internal::CaptureStderr();
  EXPECT_EQ(StatusOfOpening(m_folder.Write("cut.mp3", cut)), noErr);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("broken.mp3", broken)), noErr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(MpegFileTest, Pictures_AndTagsAtTheEnd_AreNoFrames) {
  const Bytes mp3 = Mp3();
  const UInt64 qwFrames = CountMpegFrames(mp3);
  ASSERT_GT(qwFrames, 20U);
  // A picture may hold whole MPEG frames.
  const Bytes picture = Joined(Bytes(70000, 0x5A), mp3);
  EXPECT_EQ(PacketsOf(Joined(TagOf(picture), mp3)), qwFrames);
  Bytes trailer(128, 0);
  std::copy_n("TAGtitle", 8, trailer.begin());
  EXPECT_EQ(PacketsOf(Joined(mp3, trailer)), qwFrames);
}

TEST_F(MpegFileTest, ATagWithAFooter_MayStandBeforeFewFrames) {
  const Bytes mp3 = Mp3();
  const Bytes few(mp3.begin(), mp3.begin() + static_cast<std::ptrdiff_t>(mp3.size() / 4));
  Bytes tag = TagOf(Bytes(300, 'x'));
  tag[3] = 4;
  tag[5] = 0x10;
  Bytes footer(tag.begin(), tag.begin() + 10);
  std::reverse(footer.begin(), footer.begin() + 3);
  const UInt64 qwFrames = PacketsOf(few);
  ASSERT_GE(qwFrames, 1U);
  EXPECT_EQ(PacketsOf(Joined(Joined(tag, footer), few)), qwFrames);
}

TEST_F(MpegFileTest, MoreTagsThanAnybodyWrites_AreNoSound) {
  const Bytes mp3 = Mp3();
  const UInt64 qwFrames = CountMpegFrames(mp3);
  Bytes tags;
  for (int i = 0; i < 64; ++i) tags = Joined(tags, TagOf({}));
  EXPECT_EQ(PacketsOf(Joined(tags, mp3)), qwFrames);
  EXPECT_EQ(PacketsOf(Joined(Joined(tags, TagOf({})), mp3)), 0U);
}

TEST_F(MpegFileTest, VariableBitRate_CountsItsFrames_WhateverTheInformationFrameClaims) {
  Bytes bytes = Mp3();
  const UInt64 qwFrames = CountMpegFrames(bytes);
  EXPECT_EQ(PacketsOf(bytes), qwFrames);
  const std::string strXing = "Xing";
  const auto itXing = std::search(bytes.begin(), bytes.end(), strXing.begin(), strXing.end());
  ASSERT_NE(itXing, bytes.end());
  std::fill_n(itXing + 8, 4, std::uint8_t{0x7F});
  EXPECT_EQ(PacketsOf(bytes), qwFrames);
}

TEST_F(MpegFileTest, JunkInFront_IsPassedOver) {
  const Bytes mp3 = Mp3();
  const UInt64 qwFrames = CountMpegFrames(mp3);
  for (const std::size_t cbJunk : {1U, 500U, 5000U, 60000U}) {
    EXPECT_EQ(PacketsOf(Joined(Bytes(cbJunk, 0), mp3)), qwFrames) << cbJunk;
    EXPECT_EQ(PacketsOf(Joined(TagOf(Bytes(40)), Joined(Bytes(cbJunk, 'x'), mp3))), qwFrames);
  }
  EXPECT_EQ(PacketsOf(Joined(Bytes(70000, 0), mp3)), 0U) << "nobody looks that far";
}

TEST_F(MpegFileTest, AStreamThatBeginsWithinAFrame_LosesThatFrameOnly) {
  const Bytes mp3 = Mp3();
  // The information frame is gone, and so is half of the next frame.
  const std::size_t cbFrame =
      4 +
      static_cast<std::size_t>(std::distance(
          mp3.begin() + 4, std::search(mp3.begin() + 4, mp3.end(), mp3.begin(), mp3.begin() + 2)));
  const Bytes cut(mp3.begin() + static_cast<std::ptrdiff_t>(cbFrame + cbFrame / 2), mp3.end());
  EXPECT_EQ(PacketsOf(cut), CountMpegFrames(mp3) - 1);
}

TEST_F(MpegFileTest, AStreamThatIsCut_HasTheWholeFramesThatAreThere) {
  Bytes mp3 = Mp3();
  const UInt64 qwAll = CountMpegFrames(mp3);
  mp3.resize(mp3.size() * 2 / 3);
  const UInt64 qwThere = PacketsOf(mp3);
  EXPECT_GE(qwThere, CountMpegFrames(mp3) - 1);
  EXPECT_LE(qwThere, CountMpegFrames(mp3));
  EXPECT_LT(qwThere, qwAll);
}

TEST_F(MpegFileTest, ARunOfFewFrames_IsNoStreamUnlessItBeginsTheFile) {
  const Bytes mp3 = Mp3();
  const Bytes few(mp3.begin(), mp3.begin() + static_cast<std::ptrdiff_t>(mp3.size() / 4));
  const UInt64 qwFrames = PacketsOf(few);
  EXPECT_GE(qwFrames, 1U);
  EXPECT_LT(qwFrames, 10U);
  EXPECT_EQ(PacketsOf(Joined(Bytes(100, 'x'), few)), 0U);
}

TEST_F(MpegFileTest, WhatOnlyLooksLikeAFrame_IsUnsupported) {
  Bytes text = {0xFF, 0xFE};  // the UTF-16 byte order mark looks like a sync
  for (int i = 0; i < 20000; ++i) {
    text.insert(text.end(), {static_cast<std::uint8_t>('a' + i % 26), 0});
  }
  EXPECT_EQ(PacketsOf(text), 0U);
  Bytes noise(200000);
  std::uint32_t dwNoise = 1;
  for (auto& by : noise) {
    by = static_cast<std::uint8_t>((dwNoise = dwNoise * 1664525U + 1013904223U) >> 24);
  }
  EXPECT_EQ(PacketsOf(noise), 0U);
}

// Silence in frames of 384 kbit/s at 48 kHz, layer 1, and of 192 kbit/s, layer 2.
TEST_F(MpegFileTest, LayersOneAndTwo_HavePacketsAndNamesOfTheirOwn) {
  struct S_Layer {
    Bytes head;
    std::size_t cbFrame;
    AudioFormatID dwFormat;
    UInt32 dwSamples;
  };
  for (const S_Layer& layer : {S_Layer{{0xFF, 0xFF, 0xC4, 0}, 384, kAudioFormatMPEGLayer1, 384},
                               S_Layer{{0xFF, 0xFD, 0xA4, 0}, 576, kAudioFormatMPEGLayer2, 1152}}) {
    Bytes frame = layer.head;
    frame.resize(layer.cbFrame);
    Bytes stream;
    for (int i = 0; i < 20; ++i) stream = Joined(stream, frame);
    const AudioFileID audioFile = OpenSoundFile(m_folder.Write("layer", stream));
    ASSERT_NE(audioFile, nullptr);
    EXPECT_EQ(PacketCount(audioFile), 20U);
    EXPECT_EQ(FormatOf(audioFile).mFormatID, layer.dwFormat);
    EXPECT_EQ(FormatOf(audioFile).mFramesPerPacket, layer.dwSamples);
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
  }
}

}  // namespace
