// SPDX-License-Identifier: Apache-2.0
//
// The queue where memory is missing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "FaultyNew.h"
#include "PcmQueue.h"

namespace {

bool g_bRefuseZeroedMemory = false;
int g_nRefused = 0;

}  // namespace

// The linker calls these for the queue's calls of calloc.
extern "C" void* __real_calloc(std::size_t nCount, std::size_t nSize);
extern "C" void* __wrap_calloc(std::size_t nCount, std::size_t nSize) {
  if (!g_bRefuseZeroedMemory) return __real_calloc(nCount, nSize);
  ++g_nRefused;
  return nullptr;
}

namespace {

TEST(PcmQueueMemory, WithoutMemoryForTheBlock_IsNotUsableAndDropsWhatIsWritten) {
  g_bRefuseZeroedMemory = true;
  C_PcmQueue queue;
  g_bRefuseZeroedMemory = false;
  EXPECT_EQ(g_nRefused, 1);
  EXPECT_FALSE(queue.IsUsable());
  queue.Write("abcd", 4);
  queue.Write("abcd", 4);
  EXPECT_EQ(queue.GetCount(), 0U);
  std::string strRead = "....";
  queue.Read(strRead.data(), 4);
  EXPECT_EQ(strRead, "....");
}

TEST(PcmQueueMemory, ReadWithoutMemoryForACopy_MovesTheRestToTheBaseAllTheSame) {
  C_PcmQueue queue;
  EXPECT_TRUE(queue.IsUsable());
  queue.Write("abcdefgh", 8);
  std::string strRead = "...";
  C_FaultyNew faults(1, /*bFromThenOn=*/true);
  queue.Read(strRead.data(), 3);
  faults.Stop();
  EXPECT_TRUE(faults.WasHit());
  EXPECT_EQ(strRead, "abc");
  const std::string strHeld(reinterpret_cast<const char*>(queue.GetBase()), queue.GetCount());
  EXPECT_EQ(strHeld, "defgh");
  EXPECT_EQ(queue.GetWritePosition(), queue.GetBase() + 5);
  EXPECT_TRUE(std::all_of(queue.GetBase() + 5, queue.GetBase() + C_PcmQueue::kBlockBytes,
                          [](std::uint8_t by) { return by == 0; }));
}

}  // namespace
