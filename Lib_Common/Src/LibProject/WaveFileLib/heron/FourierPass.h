// SPDX-License-Identifier: Apache-2.0
//
// One pass of the Fourier transform: what it reads and writes, and where its butterflies find their
// values.
//
// Earlier passes have combined the points into groups of nDone. A pass combines nRadix such groups
// into one, which leaves nLeft groups. Butterfly (j, q), j below nLeft and q below nDone, reads
// nRadix values that are nLeft * nDone apart, from j * nDone + q on. It writes the transform of
// these values nDone apart, from nRadix * j * nDone + q on, result k turned by rotation k * j *
// nDone.
#pragma once

#include <cstddef>
#include <span>

#include "heron/Complex.h"

namespace heron {

struct S_FourierPass {
  std::size_t nRadix;
  std::size_t nLeft;
  std::size_t nDone;
  const S_Complex* pIn;
  S_Complex* pOut;
  std::span<const S_Rotation> rotations;  // [k]: exp(-2 pi i k / points)

  [[nodiscard]] std::size_t InStride() const noexcept { return nLeft * nDone; }
};

// Any radix: 4, 2 or an odd number.
void RunFourierPass(const S_FourierPass& pass) noexcept;

}  // namespace heron
