// SPDX-License-Identifier: Apache-2.0
//
// FourierPass.h and the rotations of Dct4.h with AVX2, four complex numbers at a time. The results
// are the same to the bit.
#pragma once

#include <cstdint>
#include <span>

#include "heron/Complex.h"
#include "heron/FourierPass.h"

namespace heron {

// These return false, and do nothing, for numbers that four do not divide and on other processors.
bool RunFourierPassAvx2(const S_FourierPass& pass) noexcept;
// points[n] = (values[2n], values[N-1-2n]) turned by rotations[n].
bool RotateIntoPointsAvx2(std::span<const std::int32_t> values,
                          std::span<const S_Rotation> rotations,
                          std::span<S_Complex> points) noexcept;
// The parts of points[n], turned by rotations[n], are values[2n] and -values[N-1-2n].
bool RotateFromPointsAvx2(std::span<const S_Complex> points, std::span<const S_Rotation> rotations,
                          std::span<std::int32_t> values) noexcept;

}  // namespace heron
