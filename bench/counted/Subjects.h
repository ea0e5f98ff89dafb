// SPDX-License-Identifier: Apache-2.0
//
// Work whose instructions are counted: each subject does a number of equal units, so that the
// difference between two numbers of units is the work itself, without what it takes to start.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace counted {

struct S_Subject {
  std::string_view name;
  std::string_view unit;
  // Two numbers of units between which the work is counted.
  std::size_t nFew;
  std::size_t nMany;
  void (*pfnRun)(std::size_t nUnits);
};

[[nodiscard]] std::span<const S_Subject> FrameSubjects();

// Keeps the compiler from leaving out work whose result is not used.
void Use(const void* pResult);

}  // namespace counted
