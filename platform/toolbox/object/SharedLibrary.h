// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

namespace toolbox {

// A library that is loaded when it is first needed, because a program that ends without it should
// not wait for it. It stays loaded until the process ends: its threads may still run. Loading it
// does not survive that memory is missing, so NeedRoom (Room.h) comes first.
class C_SharedLibrary {
 public:
  explicit C_SharedLibrary(const char* pszName) noexcept;

  // False when the library does not have the function, or is not there itself. Then pfn is null.
  template <typename Function>
  bool Find(Function*& pfn, const char* pszName) const noexcept {
    pfn = reinterpret_cast<Function*>(Address(pszName));
    return pfn != nullptr;
  }

 private:
  [[nodiscard]] void* Address(const char* pszName) const noexcept;

  void* m_pLibrary;
};

// Functions of a library, a record of pointers that fnFind(library, functions) looks up. Empty when
// it does not find them all.
template <typename Functions, typename Find>
std::optional<Functions> LoadFunctions(const char* pszLibrary, Find fnFind) noexcept {
  Functions functions;
  if (!fnFind(C_SharedLibrary(pszLibrary), functions)) return std::nullopt;
  return functions;
}

}  // namespace toolbox
