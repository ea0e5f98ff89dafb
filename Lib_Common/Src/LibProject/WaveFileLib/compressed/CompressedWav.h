// SPDX-License-Identifier: Apache-2.0
//
// The compressed formats of RIFF sound files (tags 2, 6, 7 and 11): which decoder each format has,
// and how a file becomes 16-bit PCM.
//
// Memory is not allocated for what a file merely claims. Only the encoded bytes that the file holds
// are read, and PCM is refused when it is far longer than these bytes can account for.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include "compressed/MSAdpcmCodec.h"
#include "compressed/WavFileCodecInfo.h"
#include "interface/I_WavData.h"

namespace compressedwav {

// The blocks of a file may claim more samples than they hold. Up to this many bytes of PCM that the
// encoded bytes do not account for are silence; beyond that, the file is refused.
constexpr unsigned int kMaxSilentBytes = 64U << 20;

// Null for linear PCM, for a tag that the library does not read, and for DVI ADPCM of a width other
// than 3 or 4 bits.
[[nodiscard]] std::unique_ptr<C_MSAdpcmCodec> MakeDecoder(const C_WavFileCodecInfo& codecInfo);

// The format record at byte qwPosition of a file, read as far as its tag needs. Empty when the
// record is cut, is refused, or has another tag.
[[nodiscard]] std::optional<C_WavFileCodecInfo> ReadFormat(std::FILE* pFile,
                                                           std::uint64_t qwPosition,
                                                           unsigned short wFormatTag);

// The bytes from qwPosition on, as many as the file holds, at most dwLength. Empty when the file
// has no size or cannot be positioned.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> ReadPayload(std::FILE* pFile,
                                                                   std::uint64_t qwPosition,
                                                                   unsigned int dwLength);

// Replaces PCM and format of the sound by what the bytes decode to. False, with the sound
// unchanged, when there is no decoder or the PCM would be too long.
[[nodiscard]] bool Decode(const C_WavFileCodecInfo& codecInfo,
                          const std::vector<std::uint8_t>& encoded, I_WavData& wavData);

}  // namespace compressedwav
