// SPDX-License-Identifier: Apache-2.0
//
// The raw head of stream files.
#include "file/CodecHead.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "StdioFile.h"
#include "file/CodecVersionTable.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct S_Head {
  bool bWritten = false;
  Bytes bytes;
};

class CodecHead : public C_FolderTest {
 protected:
  S_Head HeadOf(unsigned int dwType, unsigned int dwSampleRate) {
    auto file = vcm::OpenFile(Path("head").c_str(), "wb");
    const bool bWritten =
        codechead::Write(file.get(), static_cast<tagAudioFileType>(dwType), dwSampleRate);
    file.reset();
    return {bWritten, Content("head")};
  }
};

TEST_F(CodecHead, CodecHead_OfALibrarysType_HasVersionZero) {
  for (const unsigned int dwType :
       {3U,  5U,  6U,  7U,  8U,  9U,  11U, 12U, 13U, 14U, 15U, 16U, 18U,  19U, 32U,
        33U, 34U, 35U, 36U, 37U, 38U, 48U, 80U, 81U, 82U, 83U, 84U, 129U, 130U}) {
    const S_Head head = HeadOf(dwType, 16000);
    EXPECT_TRUE(head.bWritten) << dwType;
    EXPECT_EQ(head.bytes, Bytes({static_cast<std::uint8_t>(dwType), 0, 0x80, 0x3E, 0, 0}))
        << dwType;
  }
}

TEST_F(CodecHead, TypesWithAFixedVersion_Have4096) {
  for (const unsigned int dwType : {1U, 64U, 131U, 132U, 257U}) {
    const S_Head head = HeadOf(dwType, 44100);
    EXPECT_TRUE(head.bWritten) << dwType;
    EXPECT_EQ(head.bytes, Bytes({static_cast<std::uint8_t>(dwType),
                                 static_cast<std::uint8_t>(dwType >> 8), 0x44, 0xAC, 0x00, 0x10}))
        << dwType;
  }
}

TEST_F(CodecHead, SoundFilesProper_HaveNone) {
  for (const unsigned int dwType : {32769U, 4353U, 4097U}) {
    const S_Head head = HeadOf(dwType, 16000);
    EXPECT_TRUE(head.bWritten) << dwType;
    EXPECT_TRUE(head.bytes.empty()) << dwType;
  }
}

TEST_F(CodecHead, CodecHead_OfAnUnknownType_LeavesFourBytesAndFails) {
  for (const unsigned int dwType : {0U, 2U, 4U, 10U, 17U, 20U, 31U, 39U, 47U, 49U, 63U, 65U, 79U,
                                    85U, 128U, 133U, 256U, 258U, 0xFFFFU}) {
    const S_Head head = HeadOf(dwType, 16000);
    EXPECT_FALSE(head.bWritten) << dwType;
    EXPECT_EQ(head.bytes, Bytes({static_cast<std::uint8_t>(dwType),
                                 static_cast<std::uint8_t>(dwType >> 8), 0x80, 0x3E}))
        << dwType;
  }
}

TEST_F(CodecHead, RatesFrom65536On_LoseTheirUpperBits) {
  EXPECT_EQ(HeadOf(14, 96000).bytes, Bytes({14, 0, 0x00, 0x77, 0, 0}));
}

TEST_F(CodecHead, FullDisk_IsFalse) {
  for (std::size_t cbLimit = 0; cbLimit < 6; ++cbLimit) {
    const auto file = vcm::OpenFile(Path("head").c_str(), "wb");
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    const C_FileSizeLimit limit(cbLimit);
    EXPECT_FALSE(codechead::Write(file.get(), AUDIO_FILE_KESTREL, 16000)) << cbLimit;
  }
}

TEST(CodecVersionTable, EachType_HasItsLibrary) {
  const std::map<unsigned int, std::string> names = {
      {3, "Lark.DLL"},     {5, "Plover.DLL"},  {7, "Ibis.DLL"},   {8, "Egret.DLL"},
      {9, "Ibis.DLL"},     {11, "Robin.DLL"},  {12, "Crane.DLL"}, {13, "Plover.DLL"},
      {14, "Kestrel.DLL"}, {15, "Wren.DLL"},   {16, "Tern.DLL"},  {18, "Finch_ENC.DLL"},
      {19, "Lark.DLL"},    {32, "HeronP.dll"}, {48, "Rook.DLL"},  {80, "Gannet.dll"},
      {129, "Petrel.DLL"}};
  std::map<unsigned int, std::string> found;
  for (const S_CodecVersionRow& row : kCodecVersions) {
    if (row.pszLibraryName != nullptr) found[row.dwFirstType] = row.pszLibraryName;
  }
  EXPECT_EQ(found, names);
}

}  // namespace
