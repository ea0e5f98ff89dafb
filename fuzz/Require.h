// SPDX-License-Identifier: Apache-2.0
//
// What a fuzzer knows must hold. Stops the fuzzer, in every build, so that it keeps the input.
#pragma once

#include <cstdlib>

inline void Require(bool bHolds) {
  if (!bHolds) std::abort();
}
