// SPDX-License-Identifier: Apache-2.0
#include "stream/PcmSamples.h"

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

namespace api {

namespace {

template <std::size_t cbUnit>
using Unit = std::conditional_t<(cbUnit > 4), std::uint64_t, std::uint32_t>;

// Written out, because compilers see one load in that, and not in a loop.
template <std::size_t cbUnit>
Unit<cbUnit> UnitAt(const std::uint8_t* pbyUnit) {
  return [pbyUnit]<std::size_t... i>(std::index_sequence<i...>) {
    return ((Unit<cbUnit>{pbyUnit[i]} << (8 * i)) | ...);
  }
  (std::make_index_sequence<cbUnit>());
}

// To the nearest integer, to the even one of two. dValue fits in 32 bits.
std::int32_t Rounded(double dValue) {
  if constexpr (FLT_EVAL_METHOD == 0 || FLT_EVAL_METHOD == 1) {
    // Beside this number, a double has no room for fractions: adding it rounds, and leaves the
    // integer in the low bits.
    constexpr double kNoFractions = 6755399441055744.0;  // 1.5 * 2^52
    const auto qwBits = std::bit_cast<std::uint64_t>(dValue + kNoFractions);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(qwBits));
  } else {
    return static_cast<std::int32_t>(std::lrint(dValue));
  }
}

// From a real number of which 1 is full scale.
template <typename Sample>
Sample FromReal(double dValue) {
  if constexpr (std::is_same_v<Sample, float>) {
    return static_cast<float>(dValue);
  } else {
    constexpr double kLowest = std::numeric_limits<Sample>::min();
    constexpr double kHighest = std::numeric_limits<Sample>::max();
    const double dNumber = std::isnan(dValue) ? 0.0 : dValue * -kLowest;
    const double dLimited = dNumber < kHighest ? dNumber : kHighest;
    return static_cast<Sample>(Rounded(dLimited > kLowest ? dLimited : kLowest));
  }
}

// From an integer that uses all 32 bits.
template <typename Sample>
Sample FromFull(std::int32_t nValue) {
  if constexpr (std::is_same_v<Sample, float>) {
    return static_cast<float>(nValue) * 0x1p-31F;
  } else {
    return static_cast<Sample>(nValue >> (32 - 8 * sizeof(Sample)));
  }
}

// How samples are stored: kBytes each, To makes one of them a sample.
struct S_Unsigned8 {
  static constexpr std::size_t kBytes = 1;
  template <typename Sample>
  [[nodiscard]] Sample To(const std::uint8_t* pbyStored) const {
    return FromFull<Sample>(static_cast<std::int32_t>((*pbyStored ^ 0x80U) << 24U));
  }
};

template <std::size_t cbSample>
struct S_Signed {
  static constexpr std::size_t kBytes = cbSample;
  template <typename Sample>
  [[nodiscard]] Sample To(const std::uint8_t* pbyStored) const {
    const std::uint32_t dwUnit = UnitAt<cbSample>(pbyStored) << (32 - 8 * cbSample);
    return FromFull<Sample>(static_cast<std::int32_t>(dwUnit));
  }
};

template <typename Real>
struct S_Float {
  static constexpr std::size_t kBytes = sizeof(Real);
  template <typename Sample>
  [[nodiscard]] Sample To(const std::uint8_t* pbyStored) const {
    const auto value = std::bit_cast<Real>(UnitAt<kBytes>(pbyStored));
    if constexpr (std::is_same_v<Sample, Real>) {
      return value;
    } else {
      return FromReal<Sample>(static_cast<double>(value));
    }
  }
};

template <typename Stored, typename Sample>
void ConvertAll(const Stored& stored, const std::uint8_t* pbyStored, std::span<Sample> samples) {
  Sample* const pSamples = samples.data();
  const std::size_t nSamples = samples.size();
  for (std::size_t i = 0; i < nSamples; ++i) {
    pSamples[i] = stored.template To<Sample>(pbyStored + i * Stored::kBytes);
  }
}

template <typename Sample>
void Convert(const S_PcmFormat& format, const std::uint8_t* pbyStored, std::span<Sample> samples) {
  if (format.bFloat && format.wBits == 32) return ConvertAll(S_Float<float>(), pbyStored, samples);
  if (format.bFloat) return ConvertAll(S_Float<double>(), pbyStored, samples);
  switch (format.wBits) {
    case 8:
      return ConvertAll(S_Unsigned8(), pbyStored, samples);
    case 16:
      return ConvertAll(S_Signed<2>(), pbyStored, samples);
    case 24:
      return ConvertAll(S_Signed<3>(), pbyStored, samples);
    default:
      return ConvertAll(S_Signed<4>(), pbyStored, samples);
  }
}

}  // namespace

bool IsKnownPcm(const S_PcmFormat& format) noexcept {
  const std::uint16_t wBits = format.wBits;
  if (format.bFloat) return wBits == 32 || wBits == 64;
  return wBits % 8 == 0 && wBits > 0 && wBits <= 32;
}

void ConvertPcm(const S_PcmFormat& format, const std::uint8_t* pbyStored,
                std::span<std::int16_t> samples) {
  Convert(format, pbyStored, samples);
}

void ConvertPcm(const S_PcmFormat& format, const std::uint8_t* pbyStored,
                std::span<std::int32_t> samples) {
  Convert(format, pbyStored, samples);
}

void ConvertPcm(const S_PcmFormat& format, const std::uint8_t* pbyStored,
                std::span<float> samples) {
  Convert(format, pbyStored, samples);
}

}  // namespace api
