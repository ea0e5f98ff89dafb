// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <new>

namespace toolbox {

// More than opening a file, a converter or a device takes, and loading the library that does it.
inline constexpr std::size_t kLibraryRoom = std::size_t{8} * 1024 * 1024;

// Throws std::bad_alloc unless that much memory is free now. The libraries for files, conversion
// and devices end the process or read through null pointers when memory is refused to them, so they
// are asked only when there is enough.
inline void NeedRoom(std::size_t cbRoom = kLibraryRoom) {
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
  // A fuzzer's memory is checked byte by byte, so this would take nearly all of its time.
  static_cast<void>(cbRoom);
#else
  // Volatile, or the compiler would leave out both calls.
  void* volatile pRoom = ::operator new(cbRoom);
  ::operator delete(pRoom);
#endif
}

}  // namespace toolbox
