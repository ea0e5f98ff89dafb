// SPDX-License-Identifier: Apache-2.0
//
// A file as the decoders read it, with and without reading ahead.
#include "file/FileStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "FaultyIo.h"
#include "TempFolder.h"

namespace {

constexpr std::size_t kBytes = 100;
constexpr UInt64 kBegin = 10;

class FileStreamTest : public testing::TestWithParam<std::size_t> {
 protected:
  FileStreamTest() {
    std::vector<std::uint8_t> bytes(kBytes);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    EXPECT_EQ(m_file.Open(m_folder.Write("x", bytes)), noErr);
  }
  // What the stream holds from its position on.
  static std::vector<std::uint8_t> Read(toolbox::C_FileStream& stream, std::size_t cbWanted) {
    std::vector<std::uint8_t> bytes(cbWanted);
    bytes.resize(stream.Read(bytes.data(), cbWanted));
    return bytes;
  }
  using Bytes = std::vector<std::uint8_t>;

  C_TempFolder m_folder;
  toolbox::C_FileDescriptor m_file;
};

TEST_P(FileStreamTest, Bytes_AreThoseOfTheFileWhereverTheyAreReadFrom) {
  toolbox::C_FileStream stream(m_file, kBegin, GetParam());
  EXPECT_EQ(stream.Size(), 90);
  EXPECT_EQ(Read(stream, 3), (Bytes{10, 11, 12}));
  EXPECT_EQ(stream.Tell(), 3);
  EXPECT_EQ(stream.FileOffset(), 13U);
  EXPECT_EQ(stream.Seek(-2, SEEK_CUR), 1);
  EXPECT_EQ(Read(stream, 2), (Bytes{11, 12}));
  EXPECT_EQ(stream.Seek(-2, SEEK_END), 88);
  EXPECT_EQ(Read(stream, 20), (Bytes{98, 99}));
  EXPECT_EQ(Read(stream, 20), Bytes{});
  EXPECT_EQ(stream.Seek(50, SEEK_SET), 50);
  EXPECT_EQ(Read(stream, 1), Bytes{60});
  EXPECT_EQ(stream.Seek(0, SEEK_SET), 0);
  EXPECT_EQ(Read(stream, 90).size(), 90U);
  EXPECT_EQ(stream.Seek(1000, SEEK_SET), 1000);
  EXPECT_EQ(Read(stream, 1), Bytes{});
  EXPECT_FALSE(m_file.HasReadError());
}

TEST_P(FileStreamTest, PositionsThatThereCannotBe_ChangeNothing) {
  constexpr SInt64 kMost = std::numeric_limits<SInt64>::max();
  toolbox::C_FileStream stream(m_file, kBegin, GetParam());
  EXPECT_EQ(stream.Seek(5, SEEK_SET), 5);
  EXPECT_EQ(stream.Seek(-1, SEEK_SET), -1);
  EXPECT_EQ(stream.Seek(-6, SEEK_CUR), -1);
  EXPECT_EQ(stream.Seek(kMost, SEEK_CUR), -1);
  EXPECT_EQ(stream.Seek(std::numeric_limits<SInt64>::min(), SEEK_END), -1);
  EXPECT_EQ(stream.Tell(), 5);
  EXPECT_EQ(stream.Seek(kMost, SEEK_SET), kMost);
  EXPECT_EQ(Read(stream, 1), Bytes{});
  EXPECT_FALSE(m_file.HasReadError());
}

TEST_P(FileStreamTest, AfterAReadError_NothingIsReadUntilItIsForgotten) {
  toolbox::C_FileStream stream(m_file, kBegin, GetParam());
  C_FaultyIo faults({.nCall = 1});
  EXPECT_EQ(Read(stream, 5), Bytes{});
  EXPECT_TRUE(m_file.HasReadError());
  EXPECT_EQ(Read(stream, 5), Bytes{});
  m_file.ForgetReadError();
  EXPECT_EQ(Read(stream, 2), (Bytes{10, 11}));
  EXPECT_FALSE(m_file.HasReadError());
}

INSTANTIATE_TEST_SUITE_P(All, FileStreamTest, testing::Values(0, 7, 4096),
                         [](const auto& parameter) {
                           return "Ahead" + std::to_string(parameter.param);
                         });

}  // namespace
