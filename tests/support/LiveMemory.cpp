// SPDX-License-Identifier: Apache-2.0
#include "LiveMemory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>

#include "ReplacedNew.h"

namespace {

std::atomic<std::size_t> g_cbLive{0};
std::atomic<std::size_t> g_cbMost{0};

}  // namespace

void ResetMostMemory() { g_cbMost = g_cbLive.load(); }
std::size_t LiveMemory() { return g_cbLive; }
std::size_t MostMemory() { return g_cbMost; }

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  void* const pMemory = std::malloc(cbSize);
  if (pMemory == nullptr) return nullptr;
  const std::size_t cbLive = g_cbLive += malloc_usable_size(pMemory);
  std::size_t cbMost = g_cbMost.load();
  while (cbLive > cbMost && !g_cbMost.compare_exchange_weak(cbMost, cbLive)) {
  }
  return pMemory;
}

void replacednew::Free(void* pMemory) noexcept {
  g_cbLive -= malloc_usable_size(pMemory);
  std::free(pMemory);
}
