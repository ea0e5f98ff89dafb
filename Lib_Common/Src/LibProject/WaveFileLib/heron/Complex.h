// SPDX-License-Identifier: Apache-2.0
//
// Complex numbers of two 32-bit integers, as the transforms use them. Sums that 32 bits cannot hold
// wrap around. No sound that was encoded comes that far, but damaged bytes may, and then every
// machine has to wrap in the same way.
#pragma once

#include <cstdint>

#include "heron/Trigonometry.h"

namespace heron {

struct S_Complex {
  std::int32_t nRe;
  std::int32_t nIm;
};

// A factor of at most modulus 1, Q30.
struct S_Rotation {
  std::int32_t nCosine;
  std::int32_t nSine;
};
inline constexpr int kRotationQ = 30;

// exp(-2 pi i nPart / nWhole).
inline S_Rotation BackwardRotation(std::int64_t nPart, std::int64_t nWhole) noexcept {
  const S_CirclePoint point = CirclePoint(nPart, nWhole);
  return {point.nCosine, -point.nSine};
}

constexpr std::int32_t Wrap32(std::uint64_t qwValue) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(qwValue));
}
constexpr std::int32_t Add32(std::int32_t a, std::int32_t b) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t Subtract32(std::int32_t a, std::int32_t b) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
constexpr std::int64_t Product(std::int32_t a, std::int32_t b) noexcept {
  return std::int64_t{a} * b;
}
// From a product with Q30 to the nearest integer, halves upwards.
constexpr std::int32_t FromProduct(std::int64_t nProduct) noexcept {
  constexpr std::int64_t kHalf = std::int64_t{1} << (kRotationQ - 1);
  return static_cast<std::int32_t>((nProduct + kHalf) >> kRotationQ);
}

constexpr S_Complex Sum(const S_Complex& a, const S_Complex& b) noexcept {
  return {Add32(a.nRe, b.nRe), Add32(a.nIm, b.nIm)};
}
constexpr S_Complex Difference(const S_Complex& a, const S_Complex& b) noexcept {
  return {Subtract32(a.nRe, b.nRe), Subtract32(a.nIm, b.nIm)};
}
constexpr S_Complex TimesMinusI(const S_Complex& a) noexcept {
  return {a.nIm, Subtract32(0, a.nRe)};
}
constexpr S_Complex Rotate(const S_Complex& value, const S_Rotation& rotation) noexcept {
  return {FromProduct(Product(value.nRe, rotation.nCosine) - Product(value.nIm, rotation.nSine)),
          FromProduct(Product(value.nRe, rotation.nSine) + Product(value.nIm, rotation.nCosine))};
}

}  // namespace heron
