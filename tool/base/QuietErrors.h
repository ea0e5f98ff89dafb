// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace tool {

// While one lives, what libraries write to standard error goes nowhere: some tell of damage there,
// in words for their makers, and cannot be asked to be silent. Any thread may have one; it counts
// for all of them.
class C_QuietErrors {
 public:
  C_QuietErrors() noexcept;
  ~C_QuietErrors();
  C_QuietErrors(const C_QuietErrors&) = delete;
  C_QuietErrors& operator=(const C_QuietErrors&) = delete;
};

// Writes to standard error in one piece, as far as it can, and also while libraries are silent.
void WriteToErrors(std::string_view text) noexcept;

}  // namespace tool
