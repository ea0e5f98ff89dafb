// SPDX-License-Identifier: Apache-2.0
//
// Calls virtual functions by their place in the table, as callers do that were compiled against
// another version of a header. The order of an interface is part of the interface.
//
// Slots count from 0 in order of declaration. A virtual destructor takes two slots (complete,
// deleting).
#pragma once

#include <cstddef>
#include <cstring>

#if defined(__clang__)
#define VTABLE_CALLS_UNTYPED __attribute__((no_sanitize("function")))
#else
#define VTABLE_CALLS_UNTYPED
#endif

// Calls the function in slot nSlot of an object's table. Needs the table layout of the Itanium C++
// ABI, and an ABI that passes the object as a first argument. Both hold on all our targets.
template <typename Result, typename... Args, typename Interface>
VTABLE_CALLS_UNTYPED Result CallSlot(Interface* pObject, std::size_t nSlot, Args... args) {
  using Function = Result (*)(void*, Args...);
  void* const* ppTable = nullptr;
  std::memcpy(&ppTable, static_cast<const void*>(pObject), sizeof ppTable);
  const auto pfnSlot = reinterpret_cast<Function>(ppTable[nSlot]);
  return pfnSlot(pObject, args...);
}
