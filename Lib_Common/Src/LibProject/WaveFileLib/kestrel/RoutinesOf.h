// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "kestrel/FastCoder.h"
#include "kestrel/Routines.h"

namespace kestrel {

// The fast routines with the given transforms and the given work on a region.
template <typename Transforms, typename Regions>
constexpr S_Routines RoutinesOf(const char* pszName) {
  using Coder = C_FastCoder<Transforms, Regions>;
  return {pszName,        &Transforms::Forward, &Transforms::Inverse,
          &Coder::Encode, &Coder::Decode,       &Coder::Skip};
}

}  // namespace kestrel
