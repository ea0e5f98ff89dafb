// SPDX-License-Identifier: Apache-2.0
#include "CountedWork.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

#include "ReplacedNew.h"

namespace {

std::uint64_t g_qwBlocks = 0;
std::size_t g_cbLiving = 0;
std::size_t g_cbPeak = 0;

}  // namespace

// The compiler puts a call of this into each block.
extern "C" void __sanitizer_cov_trace_pc() { ++g_qwBlocks; }

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  void* pMemory = std::malloc(cbSize);
  if (pMemory == nullptr) return nullptr;
  g_cbLiving += malloc_usable_size(pMemory);
  g_cbPeak = std::max(g_cbPeak, g_cbLiving);
  return pMemory;
}

void replacednew::Free(void* pMemory) noexcept {
  g_cbLiving -= malloc_usable_size(pMemory);
  std::free(pMemory);
}

C_CountedWork::C_CountedWork() : m_qwBlocks(g_qwBlocks), m_cbLiving(g_cbLiving) {
  g_cbPeak = g_cbLiving;
}

S_Work C_CountedWork::Done() const { return {g_qwBlocks - m_qwBlocks, g_cbPeak - m_cbLiving}; }
