// SPDX-License-Identifier: Apache-2.0
//
// What people call the formats of voxplay.h.
#pragma once

#include <cstdint>
#include <string>

#include "voxplay.hpp"

namespace tool {

// "WAV", "SP header"; "" for a number that is none.
std::string ContainerText(std::uint32_t dwContainer);
// "PCM", "DVI ADPCM".
std::string CodecText(std::uint32_t dwCodec);
// The same for programs: "wav", "codec_head"; "dvi4".
std::string ContainerKey(std::uint32_t dwContainer);
std::string CodecKey(std::uint32_t dwCodec);
// "Kestrel, 16000 bit/s, SP header"; "WAV, PCM, 24 bits".
std::string FormatText(const voxplay::Info& info);

// How many bits of an integer sample are used, 1 to 32; 0 for floating point.
std::uint32_t UsedBits(const voxplay::Info& info);

}  // namespace tool
