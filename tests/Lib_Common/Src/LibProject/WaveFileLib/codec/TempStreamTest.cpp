// SPDX-License-Identifier: Apache-2.0
#include "codec/TempStream.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <utility>
#include <vector>

#include "FileSizeLimit.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kBytes = {3, 1, 4, 1, 5};

TEST(TempStream, WhatWasWritten_IsReadBack) {
  vcm::C_TempFile file;
  ASSERT_TRUE(vcm::WriteExact(file.Stream(), kBytes));
  const auto bytes = tempstream::ReadBack(file);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(Bytes(bytes->View().begin(), bytes->View().end()), kBytes);
}

TEST(TempStream, EmptyFile_IsReadBackAsNothing) {
  vcm::C_TempFile file;
  const auto bytes = tempstream::ReadBack(file);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->dwLength, 0u);
  EXPECT_TRUE(bytes->View().empty());
}

TEST(TempStream, ReopenedFile_StandsAtItsBeginning) {
  vcm::C_TempFile file;
  ASSERT_TRUE(vcm::WriteExact(file.Stream(), kBytes));
  const auto written = tempstream::Reopen(file);
  ASSERT_TRUE(written);
  EXPECT_EQ(written->dwSize, 5u);
  std::array<std::uint8_t, 2> first{};
  ASSERT_TRUE(vcm::ReadExact(written->file.get(), first));
  EXPECT_EQ(first, (std::array<std::uint8_t, 2>{3, 1}));
}

TEST(TempStream, FileThatIsGone_GivesNothing) {
  vcm::C_TempFile file;
  ASSERT_TRUE(vcm::WriteExact(file.Stream(), kBytes));
  ASSERT_EQ(unlink(file.Path().c_str()), 0);
  EXPECT_FALSE(tempstream::ReadBack(file));
}

TEST(TempStream, WriteThatFailsAtItsEnd_GivesNothing) {
  vcm::C_TempFile file;
  const C_FileSizeLimit limit(3);
  // The stream holds the bytes back until it is closed.
  ASSERT_TRUE(vcm::WriteExact(file.Stream(), kBytes));
  EXPECT_FALSE(tempstream::Reopen(file));
}

TEST(TempStream, HandedOverBytes_BelongToTheCaller) {
  vcm::C_TempFile file;
  ASSERT_TRUE(vcm::WriteExact(file.Stream(), kBytes));
  unsigned char* pbyData = nullptr;
  unsigned int dwLength = 0;
  ASSERT_TRUE(tempstream::HandOver(tempstream::ReadBack(file), &pbyData, &dwLength));
  const std::unique_ptr<unsigned char[]> owned(pbyData);
  EXPECT_EQ(Bytes(pbyData, pbyData + dwLength), kBytes);
}

TEST(TempStream, HandOverOfNothing_FailsAndWritesNothing) {
  unsigned char byMark = 0;
  unsigned char* pbyData = &byMark;
  unsigned int dwLength = 7;
  EXPECT_FALSE(tempstream::HandOver(std::nullopt, &pbyData, &dwLength));
  EXPECT_EQ(pbyData, &byMark);
  EXPECT_EQ(dwLength, 7u);
}

TEST(TempStream, FileOf4GiB_IsTooLong) {
  for (const auto& [nSize, bFits] : {std::pair{0xFFFFFFFFLL, true}, {0x100000000LL, false}}) {
    vcm::C_TempFile file;
    ASSERT_EQ(ftruncate(fileno(file.Stream()), nSize), 0);
    const auto written = tempstream::Reopen(file);
    ASSERT_EQ(written.has_value(), bFits);
    if (bFits) {
      EXPECT_EQ(written->dwSize, 0xFFFFFFFFu);
    }
  }
}

}  // namespace
