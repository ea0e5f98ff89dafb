// SPDX-License-Identifier: Apache-2.0
//
// For a whole program: operator new fails when FaultsByEnvironment.h says so. The program does not
// sleep, because one that fails at every allocation in turn is started many times.
#include <unistd.h>

#include <cstdlib>

#include "FaultsByEnvironment.h"
#include "ReplacedNew.h"

namespace {

// Set before anything of the program itself is constructed. The libraries have been loaded by then;
// what they allocate at that time is not the program's.
bool g_bLoaded = false;
[[gnu::constructor(101)]] void OnLoaded() { g_bLoaded = true; }

}  // namespace

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  return g_bLoaded && IsNextCallFaulty() ? nullptr : std::malloc(cbSize);
}

void replacednew::Free(void* pMemory) noexcept { std::free(pMemory); }

extern "C" int usleep(useconds_t /*dwMicroseconds*/) { return 0; }
