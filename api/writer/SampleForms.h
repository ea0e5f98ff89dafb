// SPDX-License-Identifier: Apache-2.0
//
// Samples from the forms that callers give them in to the forms that files and coders take:
//
//   from integers    to fewer bits: the low ones are lost. To more: zeros are put below them
//   from float       times 2^(bits - 1), rounded to the nearest number, or to the even one of two
//                    that are equally near; limited to the range. What is not a number becomes 0
//
// Integers of 8 bits are unsigned in files, with 128 for silence. All others are signed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace api {

// The forms of samples in files, and the bytes that each takes.
enum class E_StoredForm { Int8, Int16, Int24, Int32, Float32 };
[[nodiscard]] constexpr std::size_t BytesOf(E_StoredForm eForm) noexcept {
  switch (eForm) {
    case E_StoredForm::Int8:
      return 1;
    case E_StoredForm::Int16:
      return 2;
    case E_StoredForm::Int24:
      return 3;
    default:
      return 4;
  }
}

// stored has samples.size() * BytesOf(eForm) bytes. They are little-endian.
void Store(std::span<const std::int16_t> samples, E_StoredForm eForm, std::uint8_t* pbyStored);
void Store(std::span<const std::int32_t> samples, E_StoredForm eForm, std::uint8_t* pbyStored);
void Store(std::span<const float> samples, E_StoredForm eForm, std::uint8_t* pbyStored);

// To 16 bits. Both have the same number of samples.
void To16(std::span<const std::int32_t> samples, std::span<std::int16_t> converted) noexcept;
void To16(std::span<const float> samples, std::span<std::int16_t> converted) noexcept;

// The mean of the channels of every frame, rounded toward zero, as sound/MonoMix.h has it.
// frames.size() is mono.size() * nChannels.
void MixToMono(std::span<const std::int16_t> frames, std::size_t nChannels,
               std::span<std::int16_t> mono) noexcept;

}  // namespace api
