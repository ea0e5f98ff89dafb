// SPDX-License-Identifier: Apache-2.0
#include "KeptForProcess.h"

namespace {

std::atomic<const S_Kept*> g_pKept{nullptr};

}  // namespace

const S_Kept* GetKeptForProcess() { return g_pKept.load(std::memory_order_acquire); }

void AddKeptForProcess(S_Kept* pEntry) {
  const S_Kept* pHead = g_pKept.load(std::memory_order_acquire);
  do {
    pEntry->pNext = pHead;
  } while (!g_pKept.compare_exchange_weak(pHead, pEntry, std::memory_order_acq_rel));
}
