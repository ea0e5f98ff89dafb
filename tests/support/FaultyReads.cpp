// SPDX-License-Identifier: Apache-2.0
//
// A module for LD_PRELOAD: a file cannot be read when FaultsByEnvironment.h says so. It counts
// reads by position, which is how the audio toolbox reads.
#include <dlfcn.h>
#include <sys/types.h>

#include <cerrno>

#include "FaultsByEnvironment.h"

extern "C" ssize_t pread(int nDescriptor, void* pData, std::size_t cbData, off_t nOffset) {
  using PFN_Read = ssize_t (*)(int, void*, std::size_t, off_t);
  static const auto pfnRead = reinterpret_cast<PFN_Read>(dlsym(RTLD_NEXT, "pread"));
  if (!IsNextCallFaulty()) return pfnRead(nDescriptor, pData, cbData, nOffset);
  errno = EIO;
  return -1;
}
