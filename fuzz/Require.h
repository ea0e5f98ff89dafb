// SPDX-License-Identifier: Apache-2.0
//
// States what must hold. When it does not, the fuzzer stops, in every build, and so keeps the
// input.
#pragma once

#include <cstdlib>

inline void Require(bool bHolds) {
  if (!bHolds) std::abort();
}
