// SPDX-License-Identifier: Apache-2.0
//
// Work whose instructions are counted. A subject repeats its work as often as it is told, so that
// the difference between two numbers of times is the work itself, without what it takes to start.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace counted {

struct S_Subject {
  std::string_view name;
  // What is counted, and how many of it one time is.
  std::string_view unit;
  std::size_t nUnits;
  // Two numbers of times between which the work is counted.
  std::size_t nFew;
  std::size_t nMany;
  void (*pfnRun)(std::size_t nTimes);
};

[[nodiscard]] std::span<const S_Subject> FrameSubjects();  // the Kestrel frame coder
[[nodiscard]] std::span<const S_Subject> HeronSubjects();  // the Heron frame coder
[[nodiscard]] std::span<const S_Subject> FileSubjects();   // loading, saving, converting
[[nodiscard]] std::span<const S_Subject> EditSubjects();   // a sound in memory
[[nodiscard]] std::span<const S_Subject> ApiSubjects();    // the public interface

// Keeps the compiler from leaving out work whose result is not used.
void Use(const void* pResult);

}  // namespace counted
