// SPDX-License-Identifier: Apache-2.0
//
// How much work the library does, as a number that is the same in every run: the basic blocks that
// it executes. A program that links voxplay_counted has the library compiled so that each block is
// counted. Memory is counted, too.
#pragma once

#include <cstddef>
#include <cstdint>

struct S_Work {
  std::uint64_t qwBlocks = 0;
  std::size_t cbPeak = 0;  // the most memory that was allocated at one time
};

// Counts from its construction on.
class C_CountedWork {
 public:
  C_CountedWork();
  [[nodiscard]] S_Work Done() const;

 private:
  std::uint64_t m_qwBlocks;
  std::size_t m_cbLiving;
};
