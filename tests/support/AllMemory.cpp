// SPDX-License-Identifier: Apache-2.0
#include "AllMemory.h"

#include <atomic>

#include "Sanitized.h"

namespace {

std::atomic<std::size_t> g_cbAll{0};

}  // namespace

void ResetAllMemory() { g_cbAll = 0; }
std::size_t AllMemory() { return g_cbAll; }

// NOLINTBEGIN: these are names of the C library and of the sanitizers
#ifdef VOXPLAY_SANITIZED
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*pfnMalloc)(const volatile void*,
                                                                           std::size_t),
                                                         void (*pfnFree)(const volatile void*));

namespace {

void OnMalloc(const volatile void*, std::size_t cbBlock) { g_cbAll += cbBlock; }
void OnFree(const volatile void*) {}
const int g_nInstalled = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);

}  // namespace
#else
extern "C" {

void* __libc_malloc(std::size_t cbBlock);
void* __libc_calloc(std::size_t nItems, std::size_t cbItem);
void* __libc_realloc(void* pBlock, std::size_t cbBlock);

void* malloc(std::size_t cbBlock) {
  g_cbAll += cbBlock;
  return __libc_malloc(cbBlock);
}

void* calloc(std::size_t nItems, std::size_t cbItem) {
  g_cbAll += nItems * cbItem;
  return __libc_calloc(nItems, cbItem);
}

void* realloc(void* pBlock, std::size_t cbBlock) {
  g_cbAll += cbBlock;
  return __libc_realloc(pBlock, cbBlock);
}

}  // extern "C"
#endif
// NOLINTEND
