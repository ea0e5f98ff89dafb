// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "CAStreamBasicDescription.h"

namespace {

constexpr UInt32 kAllOnes = 0xFFFFFFFF;

std::string TextOf(const AudioStreamBasicDescription& desc) {
  std::array<char, 512> text{};
  const CAStreamBasicDescription description(desc);
  EXPECT_EQ(description.AsText(text.data(), text.size()), text.data());
  return text.data();
}

// PCM at 8000 Hz, one frame in a packet.
AudioStreamBasicDescription Pcm(AudioFormatFlags dwFlags, UInt32 dwBits, UInt32 cbFrame,
                                UInt32 dwChannels = 1) {
  return {8000, kAudioFormatLinearPCM, dwFlags, cbFrame, 1, cbFrame, dwChannels, dwBits, 0};
}

constexpr AudioStreamBasicDescription kPlayback = {44100, 0x6C70636D, 0x29, 4, 1, 4, 2, 32, 0};
const char* const kPlaybackText =
    " 2 ch,  44100 Hz, 'lpcm' (0x00000029) 32-bit little-endian float, deinterleaved";

struct S_Row {
  AudioStreamBasicDescription desc;
  const char* pszText;
};

void ExpectTexts(const std::vector<S_Row>& rows) {
  for (const S_Row& row : rows) EXPECT_EQ(TextOf(row.desc), row.pszText);
}

TEST(StreamTextTest, WhatThePlayerPlays_IsDescribed) {
  ExpectTexts({{kPlayback, kPlaybackText},
               {{16000, 0x6C70636D, 0xC, 2, 1, 2, 1, 16, 0},
                " 1 ch,  16000 Hz, 'lpcm' (0x0000000C) 16-bit little-endian signed integer"},
               {{8000, 0x6C70636D, 8, 1, 1, 1, 1, 8, 0},
                " 1 ch,   8000 Hz, 'lpcm' (0x00000008) 8-bit unsigned integer"},
               {{},
                " 0 ch,      0 Hz, 0x00000000 (0x00000000) 0 bits/channel, 0 bytes/packet, "
                "0 frames/packet, 0 bytes/frame"},
               {{0, 0x6C70636D, 0, 0, 0, 0, 0, 0, 0},
                " 0 ch,      0 Hz, 'lpcm' (0x00000000) 0-bit unsigned integer"}});
}

TEST(StreamTextTest, ChannelsAndRate_AreRightAlignedAndNeverCut) {
  ExpectTexts({{{192000, 0x6C70636D, 8, 10, 1, 10, 10, 8, 0},
                "10 ch, 192000 Hz, 'lpcm' (0x00000008) 8-bit unsigned integer"},
               {{2822400, 0x6C70636D, 8, 123, 1, 123, 123, 8, 0},
                "123 ch, 2822400 Hz, 'lpcm' (0x00000008) 8-bit unsigned integer"},
               {{11025.75, 0x6C70636D, 8, 1, 1, 1, 1, 8, 0},
                " 1 ch,  11026 Hz, 'lpcm' (0x00000008) 8-bit unsigned integer"},
               {{-8000, 0x6C70636D, 8, 1, 1, 1, 1, 8, 0},
                " 1 ch,  -8000 Hz, 'lpcm' (0x00000008) 8-bit unsigned integer"}});
}

TEST(StreamTextTest, ByteOrder_IsSaidOfWordsOfSeveralBytes) {
  ExpectTexts(
      {{Pcm(0x0C, 16, 2),
        " 1 ch,   8000 Hz, 'lpcm' (0x0000000C) 16-bit little-endian signed integer"},
       {Pcm(0x0E, 16, 2), " 1 ch,   8000 Hz, 'lpcm' (0x0000000E) 16-bit big-endian signed integer"},
       {Pcm(0x0A, 16, 4, 2),
        " 2 ch,   8000 Hz, 'lpcm' (0x0000000A) 16-bit big-endian unsigned integer"},
       {Pcm(0x0B, 32, 4), " 1 ch,   8000 Hz, 'lpcm' (0x0000000B) 32-bit big-endian float"},
       {Pcm(0x09, 64, 8), " 1 ch,   8000 Hz, 'lpcm' (0x00000009) 64-bit little-endian float"},
       {Pcm(0x0E, 8, 1), " 1 ch,   8000 Hz, 'lpcm' (0x0000000E) 8-bit signed integer"},
       {Pcm(0x0A, 8, 2, 2), " 2 ch,   8000 Hz, 'lpcm' (0x0000000A) 8-bit unsigned integer"},
       {Pcm(0x0E, 16, 0), " 1 ch,   8000 Hz, 'lpcm' (0x0000000E) 16-bit signed integer"}});
}

TEST(StreamTextTest, FloatingPoint_HasNoSign) {
  ExpectTexts(
      {{Pcm(0x0D, 32, 4), " 1 ch,   8000 Hz, 'lpcm' (0x0000000D) 32-bit little-endian float"},
       {Pcm(0x09, 8, 1), " 1 ch,   8000 Hz, 'lpcm' (0x00000009) 8-bit float"}});
}

TEST(StreamTextTest, FixedPoint_SaysWholeAndFractionBits) {
  ExpectTexts(
      {{Pcm(0xC0C, 32, 4),
        " 1 ch,   8000 Hz, 'lpcm' (0x00000C0C) 8.24-bit little-endian signed integer"},
       {Pcm(0x8C, 16, 2),
        " 1 ch,   8000 Hz, 'lpcm' (0x0000008C) 15.1-bit little-endian signed integer"},
       // All six bits count, and none of the bits beside them.
       {Pcm(0x1F8C, 64, 8),
        " 1 ch,   8000 Hz, 'lpcm' (0x00001F8C) 1.63-bit little-endian signed integer"},
       {Pcm(0x204C, 16, 2),
        " 1 ch,   8000 Hz, 'lpcm' (0x0000204C) 16-bit little-endian signed integer"},
       {Pcm(0xC0C, 8, 1), " 1 ch,   8000 Hz, 'lpcm' (0x00000C0C) -16.24-bit signed integer"}});
}

TEST(StreamTextTest, SamplesThatDoNotFillTheirWords_SayHowTheyLie) {
  ExpectTexts({{Pcm(0x04, 24, 4),
                " 1 ch,   8000 Hz, 'lpcm' (0x00000004) 24-bit little-endian signed integer, "
                "unpacked in 4 bytes low-aligned"},
               {Pcm(0x14, 24, 4),
                " 1 ch,   8000 Hz, 'lpcm' (0x00000014) 24-bit little-endian signed integer, "
                "unpacked in 4 bytes high-aligned"},
               {Pcm(0x1C, 20, 3),
                " 1 ch,   8000 Hz, 'lpcm' (0x0000001C) 20-bit little-endian signed integer, "
                "packed in 3 bytes high-aligned"},
               {Pcm(0x0C, 20, 6, 2),
                " 2 ch,   8000 Hz, 'lpcm' (0x0000000C) 20-bit little-endian signed integer, "
                "packed in 3 bytes low-aligned"},
               {Pcm(0x00, 4, 1),
                " 1 ch,   8000 Hz, 'lpcm' (0x00000000) 4-bit unsigned integer, "
                "unpacked in 1 bytes low-aligned"},
               {Pcm(0x2C, 20, 3, 2),
                " 2 ch,   8000 Hz, 'lpcm' (0x0000002C) 20-bit little-endian signed integer, "
                "packed in 3 bytes low-aligned, deinterleaved"},
               {Pcm(0x38, 32, 2),
                " 1 ch,   8000 Hz, 'lpcm' (0x00000038) 32-bit little-endian unsigned integer, "
                "packed in 2 bytes high-aligned, deinterleaved"}});
}

TEST(StreamTextTest, SamplesThatFillTheirWords_SayNothingOfIt) {
  ExpectTexts({{Pcm(0x04, 24, 6, 2),
                " 2 ch,   8000 Hz, 'lpcm' (0x00000004) 24-bit little-endian signed integer"},
               {Pcm(0x14, 24, 3),
                " 1 ch,   8000 Hz, 'lpcm' (0x00000014) 24-bit little-endian signed integer"},
               {Pcm(0x34, 16, 2, 2),
                " 2 ch,   8000 Hz, 'lpcm' (0x00000034) 16-bit little-endian signed integer, "
                "deinterleaved"}});
}

TEST(StreamTextTest, WordsOfUnknownSize_SayNothingOfPackingAndByteOrder) {
  ExpectTexts(
      {{Pcm(0x1E, 20, 0), " 1 ch,   8000 Hz, 'lpcm' (0x0000001E) 20-bit signed integer"},
       {Pcm(0x1E, 20, 4, 0), " 0 ch,   8000 Hz, 'lpcm' (0x0000001E) 20-bit signed integer"},
       {Pcm(0x21, 20, 0, 2), " 2 ch,   8000 Hz, 'lpcm' (0x00000021) 20-bit float, deinterleaved"}});
}

TEST(StreamTextTest, AWordWhoseBitsDoNotFit32Bits_IsNotTakenForASmallOne) {
  EXPECT_EQ(TextOf(Pcm(0x08, 8, 0x20000001)),
            " 1 ch,   8000 Hz, 'lpcm' (0x00000008) 8-bit little-endian unsigned integer, "
            "packed in 536870913 bytes low-aligned");
}

TEST(StreamTextTest, Lossless_SaysTheDepthOfItsSource) {
  const auto Lossless = [](AudioFormatFlags dwFlags, UInt32 dwFrames) {
    return TextOf({44100, 0x616C6163, dwFlags, 7, dwFrames, 9, 2, 16, 0});
  };
  const std::string strHead = " 2 ch,  44100 Hz, 'alac' ";
  EXPECT_EQ(Lossless(1, 4096), strHead + "(0x00000001) from 16-bit source, 4096 frames/packet");
  EXPECT_EQ(Lossless(2, 4096), strHead + "(0x00000002) from 20-bit source, 4096 frames/packet");
  EXPECT_EQ(Lossless(3, 4096), strHead + "(0x00000003) from 24-bit source, 4096 frames/packet");
  EXPECT_EQ(Lossless(4, 0), strHead + "(0x00000004) from 32-bit source, 0 frames/packet");
  const std::string strUnknown = ") from UNKNOWN source bit depth, 4096 frames/packet";
  EXPECT_EQ(Lossless(0, 4096), strHead + "(0x00000000" + strUnknown);
  EXPECT_EQ(Lossless(5, 4096), strHead + "(0x00000005" + strUnknown);
  EXPECT_EQ(Lossless(0xC, 4096), strHead + "(0x0000000C" + strUnknown);
  EXPECT_EQ(Lossless(kAllOnes, 4096), strHead + "(0xFFFFFFFF" + strUnknown);
}

TEST(StreamTextTest, EveryOtherFormat_SaysItsSizes) {
  ExpectTexts({{{44100, 0x2E6D7033, 0, 0, 1152, 0, 2, 0, 0},
                " 2 ch,  44100 Hz, '.mp3' (0x00000000) 0 bits/channel, 0 bytes/packet, "
                "1152 frames/packet, 0 bytes/frame"},
               {{8000, 0x756C6177, 0x2C, 2, 3, 4, 1, 8, 0},
                " 1 ch,   8000 Hz, 'ulaw' (0x0000002C) 8 bits/channel, 2 bytes/packet, "
                "3 frames/packet, 4 bytes/frame"},
               {{8000, 0x6D730011, 0, 256, 505, 0, 1, 0, 0},
                " 1 ch,   8000 Hz, 'ms (0x00000000) 0 bits/channel, 256 bytes/packet, "
                "505 frames/packet, 0 bytes/frame"}});
}

TEST(StreamTextTest, CountsOfAllOnes_PrintAsMinusOne) {
  ExpectTexts({{{8000, 0x2E6D7033, kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes, 0},
                "-1 ch,   8000 Hz, '.mp3' (0xFFFFFFFF) -1 bits/channel, -1 bytes/packet, "
                "-1 frames/packet, -1 bytes/frame"},
               {{8000, 0x616C6163, 1, 0, kAllOnes, 0, 1, 0, 0},
                " 1 ch,   8000 Hz, 'alac' (0x00000001) from 16-bit source, -1 frames/packet"},
               {Pcm(0, 0x80000000, 0),
                " 1 ch,   8000 Hz, 'lpcm' (0x00000000) -2147483648-bit unsigned integer"},
               {Pcm(kAllOnes, 0x80000000, kAllOnes, kAllOnes),
                "-1 ch,   8000 Hz, 'lpcm' (0xFFFFFFFF) 2147483585.63-bit big-endian float, "
                "packed in -1 bytes high-aligned, deinterleaved"}});
}

// Expects the whole text, cut to what a buffer of cbBuffer bytes can hold.
void ExpectCut(const CAStreamBasicDescription& desc, const std::string& strWhole,
               std::size_t cbBuffer) {
  std::vector<char> buffer(cbBuffer + 16, '#');
  EXPECT_EQ(desc.AsText(buffer.data(), cbBuffer), buffer.data());
  std::string strExpected(buffer.size(), '#');
  if (cbBuffer != 0) {
    const std::string strCut = strWhole.substr(0, cbBuffer - 1);
    strExpected.replace(0, strCut.size() + 1, strCut.c_str(), strCut.size() + 1);
  }
  // The caller does not care what lies between the text and the end of the buffer.
  for (std::size_t i = strExpected.find('\0') + 1; cbBuffer != 0 && i < cbBuffer; ++i) {
    buffer[i] = strExpected[i];
  }
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), strExpected) << cbBuffer;
}

TEST(StreamTextTest, ABufferOfAnySize_HoldsTheBeginningOfTheText) {
  const std::vector<S_Row> rows = {
      {kPlayback, kPlaybackText},
      {Pcm(0xC1C, 20, 6, 2),
       " 2 ch,   8000 Hz, 'lpcm' (0x00000C1C) -4.24-bit little-endian signed integer, "
       "packed in 3 bytes high-aligned"},
      {{44100, 0x616C6163, 3, 0, 4096, 0, 2, 0, 0},
       " 2 ch,  44100 Hz, 'alac' (0x00000003) from 24-bit source, 4096 frames/packet"},
      {{44100, 0x2E6D7033, 0, 0, 1152, 0, 2, 0, 0},
       " 2 ch,  44100 Hz, '.mp3' (0x00000000) 0 bits/channel, 0 bytes/packet, "
       "1152 frames/packet, 0 bytes/frame"}};
  for (const S_Row& row : rows) {
    for (std::size_t cbBuffer = 0; cbBuffer <= 120; ++cbBuffer) {
      ExpectCut(CAStreamBasicDescription(row.desc), row.pszText, cbBuffer);
    }
  }
}

TEST(StreamTextTest, ABufferOfExactlyThatSize_IsAllThatIsNeeded) {
  for (std::size_t cbBuffer = 1; cbBuffer <= 80; ++cbBuffer) {
    std::vector<char> exact(cbBuffer);
    CAStreamBasicDescription(kPlayback).AsText(exact.data(), cbBuffer);
    EXPECT_EQ(exact.data(), std::string(kPlaybackText).substr(0, cbBuffer - 1));
  }
}

TEST(StreamTextTest, BufferThatTheHeadFills_EndsAfterTheHead) {
  const std::string strHead = " 2 ch,  44100 Hz, 'lpcm' (0x00000029) ";
  ASSERT_EQ(strHead.size(), 38U);
  std::array<char, 40> text{};
  EXPECT_EQ(CAStreamBasicDescription(kPlayback).AsText(text.data(), 39), strHead);
  EXPECT_EQ(CAStreamBasicDescription(kPlayback).AsText(text.data(), 40), strHead + "3");
}

TEST(StreamTextTest, NoBuffer_IsLeftAlone) {
  EXPECT_EQ(CAStreamBasicDescription(kPlayback).AsText(nullptr, 0), nullptr);
  EXPECT_EQ(CAStreamBasicDescription(kPlayback).AsText(nullptr, 80), nullptr);
}

TEST(StreamTextTest, RatesBeyondAllMeasure_DoNotLeaveTheBuffer) {
  AudioStreamBasicDescription desc = kPlayback;
  desc.mSampleRate = 1e308;
  std::array<char, 512> text{};
  const std::string strWhole = CAStreamBasicDescription(desc).AsText(text.data(), text.size());
  // The rate takes 309 digits instead of the 6 places of a usual rate.
  EXPECT_EQ(strWhole.size(), std::string(kPlaybackText).size() + 303);
  EXPECT_TRUE(strWhole.starts_with(" 2 ch, 1000000000000000"));
  EXPECT_TRUE(
      strWhole.ends_with(" Hz, 'lpcm' (0x00000029) 32-bit little-endian float, "
                         "deinterleaved"));
  for (std::size_t cbBuffer = 0; cbBuffer <= 400; ++cbBuffer) {
    ExpectCut(CAStreamBasicDescription(desc), strWhole, cbBuffer);
  }

  const std::string strTail = " Hz, 'lpcm' (0x00000029) 32-bit little-endian float, deinterleaved";
  desc.mSampleRate = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(TextOf(desc), " 2 ch,    nan" + strTail);
  desc.mSampleRate = -std::numeric_limits<double>::infinity();
  EXPECT_EQ(TextOf(desc), " 2 ch,   -inf" + strTail);
}

}  // namespace
