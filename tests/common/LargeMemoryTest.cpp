// SPDX-License-Identifier: Apache-2.0
#include "LargeMemory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

#include "FaultyNew.h"

TEST(LargeMemory, NewBytes_CanAllBeWritten) {
  constexpr std::size_t kMiB = std::size_t{1} << 20;
  for (const std::size_t cb :
       {std::size_t{0}, std::size_t{1}, 4 * kMiB - 1, 4 * kMiB, 4 * kMiB + 1, 9 * kMiB + 12345}) {
    const auto memory = vcm::NewBytes(cb);
    ASSERT_NE(memory, nullptr);
    for (std::size_t i = 0; i < cb; ++i) memory[i] = static_cast<unsigned char>(i * 7);
    for (std::size_t i = 0; i < cb; ++i) ASSERT_EQ(memory[i], static_cast<unsigned char>(i * 7));
  }
}

TEST(LargeMemory, NoMemory_Throws) {
  for (const std::size_t cb : {std::size_t{100}, std::size_t{8} << 20}) {
    C_FaultyNew faults(1, /*bFromThenOn=*/true);
    EXPECT_THROW(static_cast<void>(vcm::NewBytes(cb)), std::bad_alloc);
    faults.Stop();
    EXPECT_TRUE(faults.WasHit());
  }
}
