// SPDX-License-Identifier: Apache-2.0
#include "FaultyNew.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::ptrdiff_t> g_nLiving{0};
bool g_bArmed = false;
bool g_bFromThenOn = false;
bool g_bHit = false;
int g_nLeft = 0;

bool Fails() {
  if (!g_bArmed) return false;
  const bool bNow = --g_nLeft == 0;
  const bool bFails = bNow || (g_bFromThenOn && g_bHit);
  g_bHit = g_bHit || bFails;
  return bFails;
}

void* Allocate(std::size_t cb) {
  void* pData = Fails() ? nullptr : std::malloc(cb == 0 ? 1 : cb);
  if (pData == nullptr) throw std::bad_alloc();
  ++g_nLiving;
  return pData;
}

void Free(void* pData) noexcept {
  if (pData == nullptr) return;
  --g_nLiving;
  std::free(pData);
}

}  // namespace

// The library's own versions for arrays and for nothrow call these.
void* operator new(std::size_t cb) { return Allocate(cb); }
void operator delete(void* pData) noexcept { Free(pData); }
void operator delete(void* pData, std::size_t) noexcept { Free(pData); }
// The address sanitizer puts its own versions in the place of the library's, so all are replaced.
void* operator new[](std::size_t cb) { return Allocate(cb); }
void operator delete[](void* pData) noexcept { Free(pData); }
void operator delete[](void* pData, std::size_t) noexcept { Free(pData); }
void* operator new(std::size_t cb, const std::nothrow_t&) noexcept try {
  return Allocate(cb);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void* operator new[](std::size_t cb, const std::nothrow_t&) noexcept try {
  return Allocate(cb);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* pData, const std::nothrow_t&) noexcept { Free(pData); }
void operator delete[](void* pData, const std::nothrow_t&) noexcept { Free(pData); }

C_FaultyNew::C_FaultyNew(int nCall, bool bFromThenOn) {
  g_bHit = false;
  g_nLeft = nCall;
  g_bFromThenOn = bFromThenOn;
  g_bArmed = true;
}

C_FaultyNew::~C_FaultyNew() { Stop(); }

void C_FaultyNew::Stop() { g_bArmed = false; }

bool C_FaultyNew::WasHit() const { return g_bHit; }

std::ptrdiff_t C_FaultyNew::Living() { return g_nLiving; }
