// SPDX-License-Identifier: Apache-2.0
//
// A module for LD_PRELOAD: no thread can be made when FaultsByEnvironment.h says so.
#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>

#include "FaultsByEnvironment.h"

extern "C" int pthread_create(pthread_t* pThread, const pthread_attr_t* pAttributes,
                              void* (*pfnRun)(void*), void* pArgument) noexcept {
  using PFN_Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  static const auto pfnCreate = reinterpret_cast<PFN_Create>(dlsym(RTLD_NEXT, "pthread_create"));
  if (IsNextCallFaulty()) return EAGAIN;
  return pfnCreate(pThread, pAttributes, pfnRun, pArgument);
}
