// SPDX-License-Identifier: Apache-2.0
#include "writer/SampleForms.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <limits>

namespace api {
namespace {

// The nearest whole number; dValue is less than 2^51 in both directions. Around this summand, the
// distance between two numbers of this type is 1, so the addition rounds, and faster than functions
// of the C library do. Processors that compute in more digits than the type has must call those.
double Nearest(double dValue) {
#if FLT_EVAL_METHOD == 0 || FLT_EVAL_METHOD == 1
  constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52
  return (dValue + kRounder) - kRounder;
#else
  return std::nearbyint(dValue);
#endif
}

// Samples as numbers of so many bits.
template <int nBits>
std::int32_t AsInteger(std::int16_t nSample) {
  if constexpr (nBits <= 16) {
    return nSample >> (16 - nBits);
  } else {
    return nSample * (1 << (nBits - 16));
  }
}
template <int nBits>
std::int32_t AsInteger(std::int32_t nSample) {
  return nSample >> (32 - nBits);
}
template <int nBits>
std::int32_t AsInteger(float fSample) {
  constexpr double kRange = static_cast<double>(std::int64_t{1} << (nBits - 1));
  // Not a number is unequal to itself.
  const double dScaled = fSample == fSample ? static_cast<double>(fSample) * kRange : 0.0;
  return static_cast<std::int32_t>(Nearest(std::clamp(dScaled, -kRange, kRange - 1.0)));
}

float AsFloat(std::int16_t nSample) { return static_cast<float>(nSample) / 32768.0F; }
float AsFloat(std::int32_t nSample) { return static_cast<float>(nSample) / 2147483648.0F; }
float AsFloat(float fSample) { return fSample; }

template <std::size_t cbUnit>
void Put(std::uint32_t dwUnit, std::uint8_t* pbyUnit) {
  for (std::size_t i = 0; i < cbUnit; ++i) pbyUnit[i] = static_cast<std::uint8_t>(dwUnit >> 8 * i);
}

template <int nBits, typename Sample>
void StoreIntegers(std::span<const Sample> samples, std::uint8_t* pbyStored) {
  constexpr std::size_t cbUnit = nBits / 8;
  constexpr std::uint32_t dwOffset = nBits == 8 ? 128 : 0;
  for (const Sample sample : samples) {
    Put<cbUnit>(static_cast<std::uint32_t>(AsInteger<nBits>(sample)) + dwOffset, pbyStored);
    pbyStored += cbUnit;
  }
}

template <typename Sample>
void StoreFloats(std::span<const Sample> samples, std::uint8_t* pbyStored) {
  for (const Sample sample : samples) {
    Put<4>(std::bit_cast<std::uint32_t>(AsFloat(sample)), pbyStored);
    pbyStored += 4;
  }
}

template <typename Sample>
void StoreAny(std::span<const Sample> samples, E_StoredForm eForm, std::uint8_t* pbyStored) {
  switch (eForm) {
    case E_StoredForm::Int8:
      return StoreIntegers<8>(samples, pbyStored);
    case E_StoredForm::Int16:
      return StoreIntegers<16>(samples, pbyStored);
    case E_StoredForm::Int24:
      return StoreIntegers<24>(samples, pbyStored);
    case E_StoredForm::Int32:
      return StoreIntegers<32>(samples, pbyStored);
    case E_StoredForm::Float32:
      return StoreFloats(samples, pbyStored);
  }
}

template <typename Sample>
void AllTo16(std::span<const Sample> samples, std::span<std::int16_t> converted) {
  for (std::size_t i = 0; i < converted.size(); ++i) {
    converted[i] = static_cast<std::int16_t>(AsInteger<16>(samples[i]));
  }
}

}  // namespace

void Store(std::span<const std::int16_t> samples, E_StoredForm eForm, std::uint8_t* pbyStored) {
  StoreAny(samples, eForm, pbyStored);
}
void Store(std::span<const std::int32_t> samples, E_StoredForm eForm, std::uint8_t* pbyStored) {
  StoreAny(samples, eForm, pbyStored);
}
void Store(std::span<const float> samples, E_StoredForm eForm, std::uint8_t* pbyStored) {
  StoreAny(samples, eForm, pbyStored);
}

void To16(std::span<const std::int32_t> samples, std::span<std::int16_t> converted) noexcept {
  AllTo16(samples, converted);
}
void To16(std::span<const float> samples, std::span<std::int16_t> converted) noexcept {
  AllTo16(samples, converted);
}

void MixToMono(std::span<const std::int16_t> frames, std::size_t nChannels,
               std::span<std::int16_t> mono) noexcept {
  const auto nDivisor = static_cast<std::int32_t>(std::max<std::size_t>(nChannels, 1));
  const std::int16_t* pFrame = frames.data();
  for (std::int16_t& nMixed : mono) {
    std::int32_t nSum = 0;
    for (std::size_t i = 0; i < nChannels; ++i) nSum += pFrame[i];
    nMixed = static_cast<std::int16_t>(nDivisor == 2 ? nSum / 2 : nSum / nDivisor);
    pFrame += nChannels;
  }
}

}  // namespace api
