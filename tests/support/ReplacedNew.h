// SPDX-License-Identifier: Apache-2.0
//
// Replaces every form of operator new and delete in a program. One source of the program includes
// this file and defines the two functions below, which do the work.
#pragma once

#include <cstddef>
#include <new>

namespace replacednew {

// Returns null when there is no memory.
void* TryAllocate(std::size_t cbSize) noexcept;
// Never called with null.
void Free(void* pMemory) noexcept;

inline void* Allocate(std::size_t cbSize) {
  void* pMemory = TryAllocate(cbSize == 0 ? 1 : cbSize);
  if (pMemory == nullptr) throw std::bad_alloc();
  return pMemory;
}

inline void* AllocateOrNull(std::size_t cbSize) noexcept {
  return TryAllocate(cbSize == 0 ? 1 : cbSize);
}

inline void FreeUnlessNull(void* pMemory) noexcept {
  if (pMemory != nullptr) Free(pMemory);
}

}  // namespace replacednew

// The library's own versions for arrays and for nothrow would call the first one, but the address
// sanitizer puts its own versions in their place, so all are replaced.
// NOLINTBEGIN(misc-definitions-in-headers): included once
void* operator new(std::size_t cbSize) { return replacednew::Allocate(cbSize); }
void* operator new[](std::size_t cbSize) { return replacednew::Allocate(cbSize); }
void* operator new(std::size_t cbSize, const std::nothrow_t&) noexcept {
  return replacednew::AllocateOrNull(cbSize);
}
void* operator new[](std::size_t cbSize, const std::nothrow_t&) noexcept {
  return replacednew::AllocateOrNull(cbSize);
}
void operator delete(void* pMemory) noexcept { replacednew::FreeUnlessNull(pMemory); }
void operator delete[](void* pMemory) noexcept { replacednew::FreeUnlessNull(pMemory); }
void operator delete(void* pMemory, std::size_t) noexcept { replacednew::FreeUnlessNull(pMemory); }
void operator delete[](void* pMemory, std::size_t) noexcept {
  replacednew::FreeUnlessNull(pMemory);
}
void operator delete(void* pMemory, const std::nothrow_t&) noexcept {
  replacednew::FreeUnlessNull(pMemory);
}
void operator delete[](void* pMemory, const std::nothrow_t&) noexcept {
  replacednew::FreeUnlessNull(pMemory);
}
// NOLINTEND(misc-definitions-in-headers)
