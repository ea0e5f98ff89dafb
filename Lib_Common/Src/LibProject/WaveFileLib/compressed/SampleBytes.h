// SPDX-License-Identifier: Apache-2.0
//
// Samples as the PCM of a sound holds them: little-endian on every machine. Decoders that store
// whole samples turn them round first where the machine needs it.
#pragma once

#include <bit>
#include <cstdint>

namespace samplebytes {

// The number whose bytes in memory are those of nSample in little-endian order.
constexpr std::int16_t LittleEndian(std::int16_t nSample) noexcept {
  if constexpr (std::endian::native == std::endian::little) return nSample;
  const auto wSample = static_cast<std::uint16_t>(nSample);
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(wSample << 8U | wSample >> 8U));
}

}  // namespace samplebytes
