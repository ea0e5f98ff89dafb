// SPDX-License-Identifier: Apache-2.0
//
// For a whole program: operator new fails when FaultsByEnvironment.h says so. The program does not
// sleep, because one that fails at every allocation in turn is started many times.
#include <unistd.h>

#include <cstdlib>
#include <new>

#include "FaultsByEnvironment.h"

namespace {

// Set before anything of the program itself is constructed. The libraries have been loaded by then;
// what they allocate at that time is not the program's.
bool g_bLoaded = false;
[[gnu::constructor(101)]] void OnLoaded() { g_bLoaded = true; }

void* TryAllocate(std::size_t cbSize) noexcept {
  return g_bLoaded && IsNextCallFaulty() ? nullptr : std::malloc(cbSize == 0 ? 1 : cbSize);
}

void* Allocate(std::size_t cbSize) {
  void* pMemory = TryAllocate(cbSize);
  if (pMemory == nullptr) throw std::bad_alloc();
  return pMemory;
}

}  // namespace

extern "C" int usleep(useconds_t /*dwMicroseconds*/) { return 0; }

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
void operator delete(void* pMemory, const std::nothrow_t&) noexcept { std::free(pMemory); }
void operator delete[](void* pMemory, const std::nothrow_t&) noexcept { std::free(pMemory); }
