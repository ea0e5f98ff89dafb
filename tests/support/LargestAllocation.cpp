// SPDX-License-Identifier: Apache-2.0
#include "LargestAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> g_cbLargest{0};

void* TryAllocate(std::size_t cbSize) noexcept {
  std::size_t cbBefore = g_cbLargest.load();
  while (cbSize > cbBefore && !g_cbLargest.compare_exchange_weak(cbBefore, cbSize)) {
  }
  return std::malloc(cbSize == 0 ? 1 : cbSize);
}

void* Allocate(std::size_t cbSize) {
  void* pMemory = TryAllocate(cbSize);
  if (pMemory == nullptr) throw std::bad_alloc();
  return pMemory;
}

}  // namespace

void ResetLargestAllocation() { g_cbLargest = 0; }
std::size_t LargestAllocation() { return g_cbLargest; }

void* operator new(std::size_t cbSize) { return Allocate(cbSize); }
void* operator new[](std::size_t cbSize) { return Allocate(cbSize); }
void* operator new(std::size_t cbSize, const std::nothrow_t&) noexcept {
  return TryAllocate(cbSize);
}
void* operator new[](std::size_t cbSize, const std::nothrow_t&) noexcept {
  return TryAllocate(cbSize);
}
void operator delete(void* pMemory) noexcept { std::free(pMemory); }
void operator delete[](void* pMemory) noexcept { std::free(pMemory); }
void operator delete(void* pMemory, std::size_t) noexcept { std::free(pMemory); }
void operator delete[](void* pMemory, std::size_t) noexcept { std::free(pMemory); }
