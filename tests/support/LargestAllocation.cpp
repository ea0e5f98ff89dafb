// SPDX-License-Identifier: Apache-2.0
#include "LargestAllocation.h"

#include <atomic>
#include <cstdlib>

#include "ReplacedNew.h"

namespace {

std::atomic<std::size_t> g_cbLargest{0};

}  // namespace

void ResetLargestAllocation() { g_cbLargest = 0; }
std::size_t LargestAllocation() { return g_cbLargest; }

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  std::size_t cbBefore = g_cbLargest.load();
  while (cbSize > cbBefore && !g_cbLargest.compare_exchange_weak(cbBefore, cbSize)) {
  }
  return std::malloc(cbSize);
}

void replacednew::Free(void* pMemory) noexcept { std::free(pMemory); }
