// SPDX-License-Identifier: Apache-2.0
//
// Turns stored PCM into samples, as PcmStream.h says.
#pragma once

#include <cstdint>
#include <span>

#include "stream/PcmStream.h"

namespace api {

// Whether the format is in the table of PcmStream.h.
[[nodiscard]] bool IsKnownPcm(const S_PcmFormat& format) noexcept;

// Converts samples.size() stored samples, which may stand in the same memory if they have the same
// size.
void ConvertPcm(const S_PcmFormat& format, const std::uint8_t* pbyStored,
                std::span<std::int16_t> samples);
void ConvertPcm(const S_PcmFormat& format, const std::uint8_t* pbyStored,
                std::span<std::int32_t> samples);
void ConvertPcm(const S_PcmFormat& format, const std::uint8_t* pbyStored, std::span<float> samples);

}  // namespace api
