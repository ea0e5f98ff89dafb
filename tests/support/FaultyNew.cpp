// SPDX-License-Identifier: Apache-2.0
#include "FaultyNew.h"

#include <atomic>
#include <cstdlib>

#include "ReplacedNew.h"

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

}  // namespace

void* replacednew::TryAllocate(std::size_t cbSize) noexcept {
  void* pData = Fails() ? nullptr : std::malloc(cbSize);
  if (pData != nullptr) ++g_nLiving;
  return pData;
}

void replacednew::Free(void* pMemory) noexcept {
  --g_nLiving;
  std::free(pMemory);
}

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
