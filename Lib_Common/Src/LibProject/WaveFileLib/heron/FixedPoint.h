// SPDX-License-Identifier: Apache-2.0
//
// The integer arithmetic that both directions are defined in. Qn means that a value counts units of
// 2^-n; shifts to the right round down.
#pragma once

#include <bit>
#include <cstdint>

namespace heron {

// nValue / 2^nBits to the nearest integer, halves upwards; nBits 1..62.
constexpr std::int64_t RoundShift(std::int64_t nValue, int nBits) noexcept {
  return (nValue + (std::int64_t{1} << (nBits - 1))) >> nBits;
}

// 256 * log2(qwValue), rounded down; qwValue at least 1.
constexpr int Log2Q8(std::uint64_t qwValue) noexcept {
  const int nWhole = 63 - std::countl_zero(qwValue);
  // The mantissa in Q31, 1 <= m < 2: each squaring doubles its logarithm and gives one more bit.
  std::uint64_t qwMantissa = nWhole <= 31 ? qwValue << (31 - nWhole) : qwValue >> (nWhole - 31);
  int nLog = nWhole;
  for (int nBit = 0; nBit < 8; ++nBit) {
    qwMantissa = (qwMantissa * qwMantissa) >> 31;
    const int nCarry = static_cast<int>(qwMantissa >> 32);
    qwMantissa >>= nCarry;
    nLog = 2 * nLog + nCarry;
  }
  return nLog;
}

// 2^(n/4) in Q16, n = 0..3.
inline constexpr std::int64_t kQuarterOctave[4] = {65536, 77936, 92682, 110218};

}  // namespace heron
