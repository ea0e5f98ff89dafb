// SPDX-License-Identifier: Apache-2.0
#include "LiveMemory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>

#include "ReplacedNew.h"

namespace {

std::atomic<std::size_t> g_cbLive{0};
std::atomic<std::size_t> g_cbPeak{0};

}  // namespace

void ResetPeakMemory() { g_cbPeak = g_cbLive.load(); }
std::size_t PeakMemory() { return g_cbPeak; }

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  void* const pMemory = std::malloc(cbSize);
  if (pMemory == nullptr) return nullptr;
  const std::size_t cbLive = g_cbLive += malloc_usable_size(pMemory);
  std::size_t cbPeak = g_cbPeak.load();
  while (cbLive > cbPeak && !g_cbPeak.compare_exchange_weak(cbPeak, cbLive)) {
  }
  return pMemory;
}

void replacednew::Free(void* pMemory) noexcept {
  g_cbLive -= malloc_usable_size(pMemory);
  std::free(pMemory);
}
