// SPDX-License-Identifier: Apache-2.0
//
// What a coefficient counts in the number of its vector, for eight coefficients in a row.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kestrel/TablesQuantiser.h"

namespace kestrel {

using S_Digits = std::array<std::int16_t, 8>;

// The places of a number to the given base, most significant first, again and again. Five places
// stand once.
constexpr S_Digits MakeDigits(int nDimension, int nBase) {
  S_Digits digits{};
  const int nNumbers = nDimension == 5 ? 1 : 8 / nDimension;
  for (int i = nDimension * nNumbers; i-- > 0;) {
    const auto n = static_cast<std::size_t>(i);
    digits[n] =
        static_cast<std::int16_t>(i % nDimension == nDimension - 1 ? 1 : digits[n + 1] * nBase);
  }
  return digits;
}

// The places of bits, least significant first.
constexpr S_Digits MakeSetDigits(int nDimension) {
  S_Digits digits{};
  for (int i = 0; i < (nDimension == 5 ? 5 : 8); ++i) {
    digits[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(1 << i % nDimension);
  }
  return digits;
}

// By category: the digits of a vector's index.
constexpr auto MakeBinDigits() {
  std::array<S_Digits, kNoiseCategory> digits{};
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    digits[k] = MakeDigits(kVectorDimension[k], kMaxBin[k] + 1);
  }
  return digits;
}
alignas(16) inline constexpr auto kBinDigits = MakeBinDigits();

// A set of coefficients as a number, bit 0 for the first.
template <int nDimension>
alignas(16) inline constexpr S_Digits kSetDigits = MakeSetDigits(nDimension);

}  // namespace kestrel
