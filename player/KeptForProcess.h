// SPDX-License-Identifier: Apache-2.0
//
// What the player deliberately does not release, with the reason for each item. Everything in this
// list stays reachable until the process ends, so that leak checks stay sharp for everything else.
// Safe to use from every thread.
#pragma once

#include <atomic>
#include <new>

struct S_Kept {
  const char* pszReason = nullptr;
  const S_Kept* pNext = nullptr;
};

// The latest entry, which links to the earlier ones; null when nothing was kept.
const S_Kept* GetKeptForProcess();

// For KeepForProcess. The entry is never freed.
void AddKeptForProcess(S_Kept* pEntry);

// Keeps a pointer or a handle of any kind. Without memory for the entry, the thing is kept all the
// same; it is only missing in the list.
template <typename T>
void KeepForProcess(T thing, const char* pszReason) noexcept {
  struct S_Entry : S_Kept {
    T thing;
  };
  auto* pEntry = new (std::nothrow) S_Entry;
  if (pEntry == nullptr) return;
  pEntry->pszReason = pszReason;
  pEntry->thing = thing;
  AddKeptForProcess(pEntry);
}
