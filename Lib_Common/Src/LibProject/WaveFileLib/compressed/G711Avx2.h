// SPDX-License-Identifier: Apache-2.0
//
// The G.711 expansions with AVX2, 32 codes at a time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace g711 {

// Expand a multiple of 32 codes and return how many they have expanded: all but at most 31 of
// nCodes. Only for processors that have AVX2 (Processor.h); on other kinds of machines they expand
// none.
std::size_t ExpandMuLawAvx2(std::int16_t* pSamples, const std::uint8_t* pbyCodes,
                            std::size_t nCodes) noexcept;
std::size_t ExpandALawAvx2(std::int16_t* pSamples, const std::uint8_t* pbyCodes,
                           std::size_t nCodes) noexcept;

}  // namespace g711
