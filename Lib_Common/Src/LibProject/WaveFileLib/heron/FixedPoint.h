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

// Adds up the logarithms of many numbers. Their product is kept as a mantissa of 32 bits and an
// exponent.
class C_Log2Sum {
 public:
  // nValue 1..2^32-1.
  constexpr void Add(std::uint32_t nValue) noexcept {
    m_qwMantissa *= nValue;
    const int nDown = 32 - std::countl_zero(m_qwMantissa);
    m_qwMantissa >>= nDown;
    m_nExponent += nDown;
  }
  // 256 * log2 of the product, rounded down.
  [[nodiscard]] constexpr std::int64_t Total() const noexcept {
    return m_nExponent * 256 + Log2Q8(m_qwMantissa) - 31 * 256;
  }

 private:
  std::uint64_t m_qwMantissa = std::uint64_t{1} << 31;  // 2^31..2^32-1
  std::int64_t m_nExponent = 0;
};

// 2^(n/4) in Q16, n = 0..3.
inline constexpr std::int64_t kQuarterOctave[4] = {65536, 77936, 92682, 110218};

}  // namespace heron
