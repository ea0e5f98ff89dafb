// SPDX-License-Identifier: Apache-2.0
//
// States what must hold. When it does not hold, the fuzzer stops, in every build, and keeps the
// input.
#pragma once

#include <cstdlib>

inline void Require(bool bHolds) {
  if (!bHolds) std::abort();
}
