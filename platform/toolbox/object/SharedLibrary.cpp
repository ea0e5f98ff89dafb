// SPDX-License-Identifier: Apache-2.0
#include "object/SharedLibrary.h"

#include <dlfcn.h>

namespace toolbox {

C_SharedLibrary::C_SharedLibrary(const char* pszName) noexcept
    : m_pLibrary(dlopen(pszName, RTLD_NOW | RTLD_LOCAL)) {}

void* C_SharedLibrary::Address(const char* pszName) const noexcept {
  return m_pLibrary == nullptr ? nullptr : dlsym(m_pLibrary, pszName);
}

}  // namespace toolbox
