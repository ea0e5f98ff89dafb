// SPDX-License-Identifier: Apache-2.0
//
// The queue where memory is missing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "FaultyNew.h"
#include "PcmQueue.h"

namespace {

TEST(PcmQueueMemory, WithoutMemoryForTheBlock_IsNotUsableAndDropsWhatIsWritten) {
  C_FaultyNew faults(1, /*bFromThenOn=*/false);
  C_PcmQueue queue;
  faults.Stop();
  EXPECT_TRUE(faults.WasHit());
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
