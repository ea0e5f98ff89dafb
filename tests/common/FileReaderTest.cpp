// SPDX-License-Identifier: Apache-2.0
#include "FileReader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <optional>
#include <random>
#include <vector>

#include "TempFolder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes RandomBytes(std::size_t cb) {
  std::mt19937 random(7);
  Bytes bytes(cb);
  for (std::uint8_t& byByte : bytes) byByte = static_cast<std::uint8_t>(random());
  return bytes;
}

class FileReader : public testing::Test {
 protected:
  vcm::C_FilePtr File(const Bytes& bytes) {
    return vcm::OpenFile(m_folder.Write("file", bytes).c_str(), "rb");
  }

  C_TempFolder m_folder;
};

}  // namespace

TEST_F(FileReader, AnyRange_IsThatOfTheFile) {
  const Bytes bytes = RandomBytes(30000);
  vcm::C_FileReader reader(File(bytes));
  EXPECT_EQ(reader.Length(), bytes.size());
  std::mt19937 random(8);
  for (int i = 0; i < 5000; ++i) {
    const std::size_t nFrom = random() % (bytes.size() + 2000);
    const std::size_t cbWanted = random() % (i % 2 == 0 ? 20 : 9000);
    const std::size_t cbThere = std::min(cbWanted, bytes.size() - std::min(nFrom, bytes.size()));
    Bytes read(cbWanted);
    ASSERT_EQ(reader.ReadSome(nFrom, read), cbThere) << nFrom << " " << cbWanted;
    for (std::size_t k = 0; k < cbThere; ++k) ASSERT_EQ(read[k], bytes[nFrom + k]) << nFrom;
    Bytes again(cbWanted);
    EXPECT_EQ(reader.ReadExact(nFrom, again), cbThere == cbWanted);
  }
}

TEST_F(FileReader, PositionsFarAway_AreBeyondTheEnd) {
  vcm::C_FileReader reader(File({1, 2, 3}));
  Bytes two(2);
  for (const std::uint64_t qwPosition :
       {std::uint64_t{3}, std::uint64_t{1} << 40, std::numeric_limits<std::uint64_t>::max()}) {
    EXPECT_EQ(reader.ReadSome(qwPosition, two), 0U) << qwPosition;
  }
  EXPECT_EQ(reader.CanBeAt(1000), true);
  EXPECT_EQ(reader.CanBeAt(std::numeric_limits<std::uint64_t>::max()), false);
}

// A stream in memory has no place for what is beyond its end.
TEST_F(FileReader, PositionThatCannotExist_IsToldFromOneThatCannotBeReached) {
  Bytes bytes(8);
  const vcm::C_FilePtr memory(fmemopen(bytes.data(), bytes.size(), "rb"));
  vcm::C_FileReader inMemory(memory.get());
  EXPECT_EQ(inMemory.CanBeAt(8), true);
  EXPECT_EQ(inMemory.CanBeAt(9), false);
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  close(ends[1]);
  vcm::C_FileReader ofPipe(vcm::C_FilePtr(fdopen(ends[0], "rb")));
  EXPECT_EQ(ofPipe.CanBeAt(1), std::nullopt);
  ofPipe.Close();
  EXPECT_EQ(ofPipe.CanBeAt(1), std::nullopt);
}

TEST_F(FileReader, BorrowedFile_StaysWhereItIs) {
  const auto file = File({1, 2, 3});
  ASSERT_TRUE(vcm::SeekTo(file.get(), 1));
  {
    vcm::C_FileReader reader(file.get());
    Bytes one(1);
    EXPECT_TRUE(reader.ReadExact(2, one));
    EXPECT_EQ(one[0], 3);
  }
  EXPECT_EQ(vcm::Tell(file.get()), 1U);
}

TEST_F(FileReader, WhatHasNoLength_HasNone) {
  const vcm::C_FileReader none{};
  EXPECT_FALSE(none.IsOpen());
  EXPECT_FALSE(none.Length());
  const vcm::C_FileReader missing(vcm::OpenFile(m_folder.Path("missing").c_str(), "rb"));
  EXPECT_FALSE(missing.IsOpen());
  vcm::C_FileReader directory(vcm::OpenFile(m_folder.Path().c_str(), "rb"));
  EXPECT_TRUE(directory.IsOpen());
  EXPECT_FALSE(directory.Length());
  Bytes one(1);
  EXPECT_FALSE(directory.ReadSome(0, one)) << "it cannot be read";
}

TEST_F(FileReader, ClosedFile_CannotBeRead) {
  vcm::C_FileReader reader(File(RandomBytes(10)));
  Bytes ten(10);
  EXPECT_TRUE(reader.ReadExact(0, ten));
  reader.Close();
  EXPECT_FALSE(reader.IsOpen());
  EXPECT_FALSE(reader.ReadSome(0, ten));
}

TEST_F(FileReader, FileThatBecameShorter_EndsWhereItEndsNow) {
  const Bytes bytes = RandomBytes(20000);
  vcm::C_FileReader reader(File(bytes));
  std::filesystem::resize_file(m_folder.Path("file"), 15000);
  Bytes read(20000);
  EXPECT_EQ(reader.ReadSome(0, read), 15000U);
  EXPECT_EQ(reader.Length(), 15000U);
}

TEST_F(FileReader, FileThatGrew_IsReadWhenItIsMeasuredAgain) {
  vcm::C_FileReader reader(File({1, 2, 3}));
  Bytes four(4);
  EXPECT_FALSE(reader.ReadExact(0, four));
  m_folder.Write("file", {1, 2, 3, 4});
  EXPECT_EQ(reader.Measure(), 4U);
  EXPECT_TRUE(reader.ReadExact(0, four));
}

TEST_F(FileReader, FileThatTheSystemMakesUp_IsReadAlthoughItHasNoLength) {
  vcm::C_FileReader status(vcm::OpenFile("/proc/self/status", "rb"));
  EXPECT_EQ(status.Length(), 0U);
  Bytes name(5);
  EXPECT_TRUE(status.ReadExact(0, name));
  EXPECT_EQ(name, (Bytes{'N', 'a', 'm', 'e', ':'}));
  vcm::C_FileReader memory(vcm::OpenFile("/proc/self/mem", "rb"));
  EXPECT_FALSE(memory.ReadSome(0, name)) << "nothing is there to read";
}
