// SPDX-License-Identifier: Apache-2.0
//
// For a whole program: operator new fails when FaultsByEnvironment.h says so. The program does not
// sleep, because one that fails at every allocation in turn is started many times.
#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "FaultsByEnvironment.h"
#include "ReplacedNew.h"

namespace {

// Set before anything of the program itself is constructed. The libraries have been loaded by then;
// what they allocate at that time is not the program's. The same is true for libraries that the
// program loads later.
std::atomic<bool> g_bLoaded = false;
[[gnu::constructor(101)]] void OnLoaded() { g_bLoaded = true; }

}  // namespace

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  return g_bLoaded && IsNextCallFaulty() ? nullptr : std::malloc(cbSize);
}

void replacednew::Free(void* pMemory) noexcept { std::free(pMemory); }

extern "C" void* dlopen(const char* pszName, int nFlags) {
  const auto pfnOpen = reinterpret_cast<decltype(&dlopen)>(dlsym(RTLD_NEXT, "dlopen"));
  g_bLoaded = false;
  void* pLibrary = pfnOpen(pszName, nFlags);
  g_bLoaded = true;
  return pLibrary;
}

extern "C" int usleep(useconds_t /*dwMicroseconds*/) { return 0; }
