// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

#include "Failed.h"
#include "TempFolder.h"
#include "source/ByteSource.h"

namespace {

using api::test::FailureOf;

}  // namespace

TEST(FileSource, File_IsReadAtAnyPosition) {
  const C_TempFolder folder;
  std::vector<std::uint8_t> bytes(20000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 7);
  const auto source = api::OpenFileSource(folder.Write("a", bytes).c_str());
  EXPECT_EQ(source->Length(), 20000u);
  EXPECT_TRUE(source->CanGoBack());
  EXPECT_TRUE(source->InMemory().empty());
  for (const std::uint64_t qwAt : {19990u, 0u, 5000u, 4096u, 3u}) {
    std::array<std::uint8_t, 16> read{};
    const std::size_t cbRead = source->ReadSome(qwAt, read);
    EXPECT_EQ(cbRead, std::min<std::uint64_t>(16, 20000 - qwAt));
    EXPECT_EQ(read[0], static_cast<std::uint8_t>(qwAt * 7));
  }
  std::vector<std::uint8_t> all(30000);
  EXPECT_EQ(source->ReadSome(0, all), 20000u);
}

TEST(FileSource, MissingFile_SaysSo) {
  const C_TempFolder folder;
  const auto failed = FailureOf([&] { return api::OpenFileSource(folder.Path("none").c_str()); });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_OPEN);
  EXPECT_EQ(failed.strText, "there is no such file");
}

TEST(FileSource, Folder_IsNoFile) {
  const C_TempFolder folder;
  const auto failed = FailureOf([&] { return api::OpenFileSource(folder.Path().c_str()); });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_OPEN);
  EXPECT_EQ(failed.strText, "not a regular file");
}

TEST(FileSource, Pipe_IsRefusedWithoutWaiting) {
  const C_TempFolder folder;
  const std::string strPipe = folder.Path("pipe");
  ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
  const auto failed = FailureOf([&] { return api::OpenFileSource(strPipe.c_str()); });
  EXPECT_EQ(failed.eStatus, VOXPLAY_CANNOT_OPEN);
  EXPECT_EQ(failed.strText, "not a regular file");
}

TEST(FileSource, FileThatBecomesShorter_EndsWhereItEnds) {
  const C_TempFolder folder;
  const std::string strPath = folder.Write("a", std::vector<std::uint8_t>(10000, 1));
  const auto source = api::OpenFileSource(strPath.c_str());
  std::filesystem::resize_file(strPath, 9000);
  std::vector<std::uint8_t> read(10000);
  EXPECT_EQ(source->ReadSome(0, read), 9000u);
}
