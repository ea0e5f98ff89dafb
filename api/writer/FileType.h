// SPDX-License-Identifier: Apache-2.0
//
// The kinds of formats, their names, and the numbers by which headers name their codecs.
#pragma once

#include <cstdint>
#include <optional>

#include "codec/HeronStream.h"
#include "voxplay.h"

namespace api {

// Whether the samples become a stream of a codec.
bool HasStream(const voxplay_format& format) noexcept;
// As the subject of a sentence, "an SP header"; null for a number that is no container.
const char* NameOfContainer(std::uint32_t dwContainer) noexcept;

// Empty when the format is not Heron, or has a number of bits that Heron has not.
std::optional<heronstream::S_Variant> HeronVariantOf(const voxplay_format& format) noexcept;
// The type (tagAudioFileType) of a format with a stream.
std::uint16_t FileTypeOf(const voxplay_format& format) noexcept;
// Of Kestrel, the rate that 0 stands for is put in; 0 for everything else.
std::uint32_t BitRateOf(const voxplay_format& format) noexcept;

}  // namespace api
