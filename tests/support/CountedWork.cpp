// SPDX-License-Identifier: Apache-2.0
#include "CountedWork.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

std::uint64_t g_qwBlocks = 0;
std::size_t g_cbLiving = 0;
std::size_t g_cbPeak = 0;

void* Counted(void* pMemory) {
  if (pMemory == nullptr) throw std::bad_alloc();
  g_cbLiving += malloc_usable_size(pMemory);
  g_cbPeak = std::max(g_cbPeak, g_cbLiving);
  return pMemory;
}

void Free(void* pMemory) {
  g_cbLiving -= malloc_usable_size(pMemory);
  std::free(pMemory);
}

}  // namespace

// The compiler puts a call of this into each block.
extern "C" void __sanitizer_cov_trace_pc() { ++g_qwBlocks; }

void* operator new(std::size_t cbSize) {
  return Counted(std::malloc(std::max<std::size_t>(cbSize, 1)));
}
void* operator new[](std::size_t cbSize) { return operator new(cbSize); }
void operator delete(void* pMemory) noexcept { Free(pMemory); }
void operator delete[](void* pMemory) noexcept { Free(pMemory); }
void operator delete(void* pMemory, std::size_t) noexcept { Free(pMemory); }
void operator delete[](void* pMemory, std::size_t) noexcept { Free(pMemory); }

C_CountedWork::C_CountedWork() : m_qwBlocks(g_qwBlocks), m_cbLiving(g_cbLiving) {
  g_cbPeak = g_cbLiving;
}

S_Work C_CountedWork::Done() const { return {g_qwBlocks - m_qwBlocks, g_cbPeak - m_cbLiving}; }
