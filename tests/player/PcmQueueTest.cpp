// SPDX-License-Identifier: Apache-2.0
#include "PcmQueue.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::uint32_t kBlock = 33554432;

bool IsZero(const std::uint8_t* pbyFrom, std::size_t cbCount) {
  return std::all_of(pbyFrom, pbyFrom + cbCount, [](std::uint8_t by) { return by == 0; });
}

// The state of the process-wide queue when main begins.
struct S_AtStart {
  bool bZero;
  std::uint32_t dwCount;
  bool bAtBase;
};
S_AtStart g_atStart;

std::string Held(const C_PcmQueue& queue) {
  return {reinterpret_cast<const char*>(queue.GetBase()), queue.GetCount()};
}

TEST(PcmQueue, TheProcessWideQueue_IsZeroedBeforeMainBegins) {
  EXPECT_TRUE(g_atStart.bZero);
  EXPECT_EQ(g_atStart.dwCount, 0U);
  EXPECT_TRUE(g_atStart.bAtBase);
}

TEST(PcmQueue, New_IsEmptyAndAllZero) {
  const C_PcmQueue queue;
  EXPECT_EQ(queue.GetCount(), 0U);
  EXPECT_EQ(queue.GetWritePosition(), queue.GetBase());
  EXPECT_TRUE(IsZero(queue.GetBase(), kBlock));
}

TEST(PcmQueue, Write_AppendsAfterTheHeldBytes) {
  C_PcmQueue queue;
  queue.Write("abcd", 4);
  EXPECT_EQ(queue.GetCount(), 4U);
  EXPECT_EQ(queue.GetWritePosition(), queue.GetBase() + 4);
  queue.Write("ef", 2);
  EXPECT_EQ(Held(queue), "abcdef");
  EXPECT_EQ(queue.GetWritePosition(), queue.GetBase() + 6);
}

TEST(PcmQueue, WriteOfNothing_ChangesNothing) {
  C_PcmQueue queue;
  queue.Write(nullptr, 0);
  EXPECT_EQ(queue.GetCount(), 0U);
  queue.Write("x", 1);
  EXPECT_EQ(Held(queue), "x");
}

TEST(PcmQueue, Read_MovesTheRestToTheBaseAndClearsTheBlockAfterIt) {
  C_PcmQueue queue;
  queue.Write("abcdef", 6);
  std::array<char, 4> taken{};
  queue.Read(taken.data(), 4);
  EXPECT_EQ(std::string(taken.data(), 4), "abcd");
  EXPECT_EQ(Held(queue), "ef");
  EXPECT_EQ(queue.GetWritePosition(), queue.GetBase() + 2);
  EXPECT_TRUE(IsZero(queue.GetBase() + 2, kBlock - 2));
}

// Whatever the page that the held bytes end in, and whatever another part of the program wrote
// after them.
TEST(PcmQueue, Read_ClearsEveryByteOfTheBlockButTheRest) {
  constexpr std::array<std::uint32_t, 9> kHeld = {1,    2,    4080,          4096,      4097,
                                                  8191, 8192, kBlock - 4097, kBlock - 1};
  for (const std::uint32_t dwHeld : kHeld) {
    C_PcmQueue queue;
    const std::vector<char> bytes(dwHeld, 'x');
    queue.Write(bytes.data(), dwHeld);
    auto* pbyBase = const_cast<std::uint8_t*>(queue.GetBase());
    std::memset(pbyBase + dwHeld, 'y', kBlock - dwHeld);
    char chTaken = 0;
    queue.Read(&chTaken, 1);
    EXPECT_EQ(chTaken, 'x');
    ASSERT_EQ(queue.GetCount(), dwHeld - 1);
    EXPECT_EQ(std::count(pbyBase, pbyBase + dwHeld - 1, 'x'), dwHeld - 1) << dwHeld;
    EXPECT_TRUE(IsZero(pbyBase + dwHeld - 1, kBlock - dwHeld + 1)) << dwHeld;
  }
}

TEST(PcmQueue, ReadOfMoreThanIsHeld_LeavesTheRestOfTheDestination) {
  C_PcmQueue queue;
  queue.Write("abc", 3);
  std::string strTaken(6, '?');
  queue.Read(strTaken.data(), 6);
  EXPECT_EQ(strTaken, "abc???");
  EXPECT_EQ(queue.GetCount(), 0U);
  EXPECT_EQ(queue.GetWritePosition(), queue.GetBase());
  EXPECT_TRUE(IsZero(queue.GetBase(), kBlock));
}

TEST(PcmQueue, ReadOfNothing_KeepsWhatIsHeld) {
  C_PcmQueue queue;
  queue.Write("abc", 3);
  char cTaken = '?';
  queue.Read(&cTaken, 0);
  EXPECT_EQ(cTaken, '?');
  EXPECT_EQ(Held(queue), "abc");
}

TEST(PcmQueue, ReadOfAnEmptyQueue_TouchesNothing) {
  C_PcmQueue queue;
  std::string strTaken(64, '\xAA');
  queue.Read(strTaken.data(), 64);
  EXPECT_EQ(strTaken, std::string(64, '\xAA'));
}

TEST(PcmQueue, Queue_HoldsOneByteLessThanTheBlock) {
  C_PcmQueue queue;
  std::vector<std::uint8_t> data(kBlock - 1);
  std::iota(data.begin(), data.end(), std::uint8_t{0});
  queue.Write(data.data(), kBlock - 1);
  ASSERT_EQ(queue.GetCount(), 33554431U);
  EXPECT_EQ(std::memcmp(queue.GetBase(), data.data(), data.size()), 0);
  std::vector<std::uint8_t> taken(1000);
  queue.Read(taken.data(), 1000);
  EXPECT_TRUE(std::equal(taken.begin(), taken.end(), data.begin()));
  EXPECT_EQ(queue.GetCount(), 33553431U);
  EXPECT_EQ(std::memcmp(queue.GetBase(), data.data() + 1000, data.size() - 1000), 0);
}

// Runs the work in a child process. True when it ends within a second.
template <typename Work>
bool Ends(Work work) {
  const pid_t nChild = fork();
  if (nChild == 0) {
    alarm(1);
    work();
    _exit(0);
  }
  int nStatus = 0;
  waitpid(nChild, &nStatus, 0);
  EXPECT_TRUE(WIFEXITED(nStatus) || WTERMSIG(nStatus) == SIGALRM);
  return WIFEXITED(nStatus);
}

TEST(PcmQueue, Write_ThatDoesNotFit_LeavesTheLockHeld) {
  const std::vector<std::uint8_t> data(kBlock, 1);
  // The same without an overflow, so that the second expectation proves something.
  EXPECT_TRUE(Ends([&] {
    C_PcmQueue queue;
    queue.Write(data.data(), kBlock - 1);
    queue.Write("", 0);
  }));
  EXPECT_FALSE(Ends([&] {
    C_PcmQueue queue;
    queue.Write(data.data(), kBlock);
    queue.Write("x", 1);
  }));
  EXPECT_FALSE(Ends([&] {
    C_PcmQueue queue;
    queue.Write("x", 1);
    queue.Write(data.data(), kBlock - 1);
    char cTaken = 0;
    queue.Read(&cTaken, 1);
  }));
}

TEST(PcmQueue, Write_ThatDoesNotFit_IsDropped) {
  const std::vector<std::uint8_t> data(kBlock, 1);
  C_PcmQueue* pQueue = new C_PcmQueue;
  pQueue->Write("ab", 2);
  pQueue->Write(data.data(), kBlock - 2);
  EXPECT_EQ(Held(*pQueue), "ab");
  EXPECT_EQ(pQueue->GetWritePosition(), pQueue->GetBase() + 2);
  EXPECT_TRUE(IsZero(pQueue->GetBase() + 2, kBlock - 2));
  // Its lock is held forever, and a held lock must not be destroyed.
  static C_PcmQueue* pKept = nullptr;
  pKept = pQueue;
  EXPECT_NE(pKept, nullptr);
}

TEST(PcmQueue, WriteWhoseSizeWouldWrap_IsDroppedWithoutACopy) {
  static auto& queue = *new C_PcmQueue;
  queue.Write("ab", 2);
  queue.Write("x", 0xFFFFFFFF);
  EXPECT_EQ(Held(queue), "ab");
}

TEST(PcmQueue, AfterAnOverflowOfAnEmptyQueue_ReadReturnsAtOnce) {
  const std::vector<std::uint8_t> data(kBlock, 1);
  EXPECT_TRUE(Ends([&] {
    C_PcmQueue queue;
    queue.Write(data.data(), kBlock);
    char cTaken = '?';
    queue.Read(&cTaken, 1);
    if (cTaken != '?') _exit(1);
    _exit(0);
  }));
}

TEST(PcmQueue, WriterAndReaderSideBySide_KeepEveryByteInOrder) {
  C_PcmQueue queue;
  constexpr std::size_t cbTotal = 64000;
  std::vector<std::uint8_t> data(cbTotal);
  for (std::size_t i = 0; i < cbTotal; ++i) data[i] = static_cast<std::uint8_t>(i * 7 / 3);
  std::thread writer([&] {
    for (std::size_t i = 0; i < cbTotal; i += 640) queue.Write(data.data() + i, 640);
  });
  std::vector<std::uint8_t> taken(cbTotal);
  for (std::size_t cbTaken = 0; cbTaken < cbTotal;) {
    const auto cbPiece = std::min<std::uint32_t>(queue.GetCount(), 3200);
    queue.Read(taken.data() + cbTaken, cbPiece);
    cbTaken += cbPiece;
  }
  writer.join();
  EXPECT_EQ(taken, data);
  EXPECT_EQ(queue.GetCount(), 0U);
}

}  // namespace

int main(int argc, char** argv) {
  g_atStart = {IsZero(g_pcmQueue.GetBase(), kBlock), g_pcmQueue.GetCount(),
               g_pcmQueue.GetBase() == g_pcmQueue.GetWritePosition()};
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
