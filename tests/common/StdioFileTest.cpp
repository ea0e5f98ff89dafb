// SPDX-License-Identifier: Apache-2.0
#include "StdioFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <limits>
#include <vector>

#include "TempFolder.h"

namespace {
using Bytes = std::vector<std::uint8_t>;
}

TEST(StdioFile, OpenFile_OfAMissingName_IsEmpty) {
  const C_TempFolder folder;
  EXPECT_FALSE(vcm::OpenFile(folder.Path("missing").c_str(), "rb"));
}

TEST(StdioFile, OpenFile_ToReadAPipeOrADevice_IsEmptyAtOnce) {
  const C_TempFolder folder;
  ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  for (const char* pszMode : {"rb", "r+b"}) {
    EXPECT_FALSE(vcm::OpenFile(folder.Path("pipe").c_str(), pszMode));
    EXPECT_FALSE(vcm::OpenFile("/dev/zero", pszMode));
  }
  EXPECT_TRUE(vcm::OpenFile("/dev/null", "wb"));
}

TEST(StdioFile, WrittenBytes_ReadBack) {
  const C_TempFolder folder;
  auto out = vcm::OpenFile(folder.Path("file").c_str(), "wb");
  ASSERT_TRUE(out);
  EXPECT_TRUE(vcm::WriteExact(out.get(), Bytes{1, 2, 3}));
  EXPECT_TRUE(vcm::WriteExact(out.get(), {}));
  EXPECT_TRUE(vcm::CloseChecked(std::move(out)));
  const auto in = vcm::OpenFile(folder.Path("file").c_str(), "rb");
  std::array<std::uint8_t, 2> two{};
  EXPECT_TRUE(vcm::ReadExact(in.get(), two));
  EXPECT_EQ(two[1], 2);
  EXPECT_EQ(vcm::Tell(in.get()), 2u);
  EXPECT_FALSE(vcm::ReadExact(in.get(), two));
}

TEST(StdioFile, ReadSome_GivesWhatThereIs) {
  const C_TempFolder folder;
  const auto in = vcm::OpenFile(folder.Write("file", {1, 2, 3}).c_str(), "rb");
  std::array<std::uint8_t, 8> eight{};
  EXPECT_EQ(vcm::ReadSome(in.get(), eight), 3u);
  EXPECT_EQ(vcm::ReadSome(in.get(), {}), 0u);
  EXPECT_TRUE(vcm::ReadExact(in.get(), {}));
}

TEST(StdioFile, ReadSome_OfWhatCannotBeRead_IsEmpty) {
  const C_TempFolder folder;
  std::array<std::uint8_t, 8> eight{};
  // A directory opens for reading, and every read of it fails.
  const auto directory = vcm::OpenFile(folder.Path().c_str(), "rb");
  ASSERT_TRUE(directory);
  EXPECT_FALSE(vcm::ReadSome(directory.get(), eight));
  EXPECT_FALSE(vcm::IsAtEnd(directory.get()));
  const auto to = vcm::OpenFile(folder.Path("to").c_str(), "wb");
  EXPECT_FALSE(vcm::CopyRest(directory.get(), to.get()));
}

TEST(StdioFile, IsAtEnd_HoldsFromTheEndOn) {
  const C_TempFolder folder;
  const auto in = vcm::OpenFile(folder.Write("file", {1, 2, 3}).c_str(), "rb");
  for (const std::uint64_t qwPosition : {0u, 2u, 3u, 4u, 1000u}) {
    ASSERT_TRUE(vcm::SeekTo(in.get(), qwPosition));
    EXPECT_EQ(vcm::IsAtEnd(in.get()), qwPosition >= 3) << qwPosition;
  }
  std::FILE* pPipe = popen("echo text", "r");
  ASSERT_NE(pPipe, nullptr);
  std::array<std::uint8_t, 8> eight{};
  EXPECT_FALSE(vcm::IsAtEnd(pPipe));
  EXPECT_EQ(vcm::ReadSome(pPipe, eight), 5u);
  EXPECT_TRUE(vcm::IsAtEnd(pPipe));
  pclose(pPipe);
}

TEST(StdioFile, CopyRest_CopiesFromThePositionToTheEnd) {
  const C_TempFolder folder;
  for (const std::size_t cb : {std::size_t{0}, std::size_t{1}, std::size_t{1023}, std::size_t{1024},
                               std::size_t{1025}, std::size_t{5000}}) {
    Bytes bytes(cb + 1);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 7);
    const auto from = vcm::OpenFile(folder.Write("from", bytes).c_str(), "rb");
    auto to = vcm::OpenFile(folder.Path("to").c_str(), "wb");
    ASSERT_TRUE(vcm::SeekTo(from.get(), 1));
    EXPECT_TRUE(vcm::CopyRest(from.get(), to.get()));
    EXPECT_TRUE(vcm::CloseChecked(std::move(to)));
    EXPECT_EQ(folder.Read("to"), Bytes(bytes.begin() + 1, bytes.end()));
  }
}

TEST(StdioFile, CloseChecked_ReportsAFullDisk) {
  auto full = vcm::OpenFile("/dev/full", "wb");
  ASSERT_TRUE(full);
  EXPECT_TRUE(vcm::WriteExact(full.get(), Bytes{1}));
  EXPECT_FALSE(vcm::CloseChecked(std::move(full)));
}

TEST(StdioFile, CloseChecked_RemembersAnEarlierFailure) {
  auto full = vcm::OpenFile("/dev/full", "wb");
  ASSERT_TRUE(full);
  EXPECT_TRUE(vcm::WriteExact(full.get(), Bytes{1}));
  EXPECT_NE(std::fflush(full.get()), 0);
  EXPECT_FALSE(vcm::CloseChecked(std::move(full)));
  EXPECT_FALSE(vcm::CloseChecked({}));
}

TEST(StdioFile, Seeking_Reaches64BitPositions) {
  const C_TempFolder folder;
  const auto file = vcm::OpenFile(folder.Write("file", {1, 2, 3}).c_str(), "rb");
  EXPECT_TRUE(vcm::SeekTo(file.get(), 0x1'8000'0000u));
  EXPECT_EQ(vcm::Tell(file.get()), 0x1'8000'0000u);
  EXPECT_FALSE(vcm::SeekTo(file.get(), std::numeric_limits<std::uint64_t>::max()));
  EXPECT_FALSE(vcm::SeekTo(file.get(), std::uint64_t{1} << 63));
  EXPECT_EQ(vcm::SizeAndSeekEnd(file.get()), 3u);
  EXPECT_EQ(vcm::Tell(file.get()), 3u);
}

TEST(StdioFile, DirectoriesAndPipes_HaveNoSize) {
  const C_TempFolder folder;
  const auto directory = vcm::OpenFile(folder.Path().c_str(), "rb");
  ASSERT_TRUE(directory);
  EXPECT_FALSE(vcm::SizeAndSeekEnd(directory.get()));
  std::FILE* pPipe = popen("true", "r");
  ASSERT_NE(pPipe, nullptr);
  EXPECT_FALSE(vcm::SizeAndSeekEnd(pPipe));
  EXPECT_FALSE(vcm::Tell(pPipe));
  pclose(pPipe);
}
