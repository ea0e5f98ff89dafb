// SPDX-License-Identifier: Apache-2.0
//
// The fixed-point operators that the frame coder is defined in. They work on 16- and 32-bit two's
// complement values and limit each result to its width. Inner expressions are exact; only Saturate
// limits. Shifts to the right round down.
//
//   16 bits: Add Sub Neg Mag MulQ15 Shl Norm     32 bits: LMul LMac LShl     32 to 16: Round
//   Only Wrap16 is meant to wrap.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace kestrel {

// nValue limited to the range of Narrow.
template <typename Narrow, typename Wide>
constexpr Narrow Saturate(Wide nValue) noexcept {
  constexpr Wide nLowest = std::numeric_limits<Narrow>::min();
  constexpr Wide nHighest = std::numeric_limits<Narrow>::max();
  return static_cast<Narrow>(nValue < nLowest ? nLowest : nValue > nHighest ? nHighest : nValue);
}

constexpr std::int16_t Saturate16(std::int32_t nValue) noexcept {
  return Saturate<std::int16_t>(nValue);
}
constexpr std::int32_t Saturate32(std::int64_t nValue) noexcept {
  return Saturate<std::int32_t>(nValue);
}

constexpr std::int16_t Add(std::int16_t nA, std::int16_t nB) noexcept {
  return Saturate16(nA + nB);
}
constexpr std::int16_t Sub(std::int16_t nA, std::int16_t nB) noexcept {
  return Saturate16(nA - nB);
}

// -(-32768) is 32767; so is the magnitude of -32768.
constexpr std::int16_t Neg(std::int16_t nA) noexcept { return Saturate16(-nA); }
constexpr std::int16_t Mag(std::int16_t nA) noexcept { return nA < 0 ? Neg(nA) : nA; }

// Product of two Q15 values in Q15, rounded down. Only (-32768) * (-32768) saturates.
constexpr std::int16_t MulQ15(std::int16_t nA, std::int16_t nB) noexcept {
  return Saturate16(nA * nB >> 15);
}

// nA * 2^nBits, nBits 0..15.
constexpr std::int16_t Shl(std::int16_t nA, int nBits) noexcept {
  return Saturate16(nA * (std::int32_t{1} << nBits));
}

// Shifts to the left that bring nA into 16384..32767 or -32768..-16385; 0 for 0, 15 for -1.
constexpr int Norm(std::int16_t nA) noexcept {
  if (nA == 0) return 0;
  const auto wMagnitudeBits = static_cast<std::uint16_t>(nA < 0 ? ~nA : nA);
  return std::countl_zero(wMagnitudeBits) - 1;
}

// 2 * nA * nB: Q15 times Q15 in Q31. Only (-32768) * (-32768) saturates.
constexpr std::int32_t LMul(std::int16_t nA, std::int16_t nB) noexcept {
  return Saturate32(std::int64_t{nA} * nB * 2);
}

// One step of a sum of products; saturates at every step, so the order of the steps matters.
constexpr std::int32_t LMac(std::int32_t nSum, std::int16_t nA, std::int16_t nB) noexcept {
  return Saturate32(std::int64_t{nSum} + LMul(nA, nB));
}

// nA * 2^nBits, nBits 0..31.
constexpr std::int32_t LShl(std::int32_t nA, int nBits) noexcept {
  return Saturate32(nA * (std::int64_t{1} << nBits));
}

// The upper half of nA, rounded to nearest, ties upwards.
constexpr std::int16_t Round(std::int32_t nA) noexcept {
  return static_cast<std::int16_t>(Saturate32(std::int64_t{nA} + 0x8000) >> 16);
}

// The 16 low bits of nA as a signed value. Wraps on purpose.
constexpr std::int16_t Wrap16(std::int32_t nA) noexcept {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(nA)));
}

}  // namespace kestrel
