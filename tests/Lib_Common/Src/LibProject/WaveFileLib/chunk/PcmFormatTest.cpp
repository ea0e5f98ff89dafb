// SPDX-License-Identifier: Apache-2.0
#include "chunk/PcmFormat.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kStored = {0x02, 0x01, 0x04, 0x03, 0x08, 0x07, 0x06, 0x05,
                       0x0C, 0x0B, 0x0A, 0x09, 0x0E, 0x0D, 0x10, 0x0F};

TEST(PcmFormat, EachField_StandsInItsPlace) {
  vcm::C_ByteReader reader(kStored);
  const S_PcmFormatRecord record = pcmformat::Read(reader);
  EXPECT_TRUE(reader.Ok());
  EXPECT_EQ(reader.Remaining(), 0u);
  EXPECT_EQ(record.wFormatTag, 0x0102);
  EXPECT_EQ(record.wChannels, 0x0304);
  EXPECT_EQ(record.dwSamplesPerSec, 0x05060708u);
  EXPECT_EQ(record.dwAvgBytesPerSec, 0x090A0B0Cu);
  EXPECT_EQ(record.wBlockAlign, 0x0D0E);
  EXPECT_EQ(record.wBitsPerSample, 0x0F10);
}

TEST(PcmFormat, WhatIsRead_IsWrittenBack) {
  vcm::C_ByteReader reader(kStored);
  vcm::C_ByteWriter writer;
  pcmformat::Write(pcmformat::Read(reader), writer);
  EXPECT_EQ(writer.Data(), kStored);
}

TEST(PcmFormat, CutRecord_HasZerosAndSaysSo) {
  const Bytes cut(kStored.begin(), kStored.begin() + 15);
  vcm::C_ByteReader reader(cut);
  const S_PcmFormatRecord record = pcmformat::Read(reader);
  EXPECT_FALSE(reader.Ok());
  EXPECT_EQ(record.wBlockAlign, 0x0D0E);
  EXPECT_EQ(record.wBitsPerSample, 0);
}

}  // namespace
