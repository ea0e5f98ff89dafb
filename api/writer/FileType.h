// SPDX-License-Identifier: Apache-2.0
//
// The numbers by which headers name the codecs.
#pragma once

#include <cstdint>
#include <optional>

#include "codec/HeronStream.h"
#include "voxplay.h"

namespace api {

// Empty when the format is not Heron, or has a number of bits that Heron has not.
std::optional<heronstream::S_Variant> HeronVariantOf(const voxplay_format& format) noexcept;
// The type (tagAudioFileType) of a format with a stream.
std::uint16_t FileTypeOf(const voxplay_format& format) noexcept;
// Of Kestrel, the rate that 0 stands for is put in; 0 for everything else.
std::uint32_t BitRateOf(const voxplay_format& format) noexcept;

}  // namespace api
