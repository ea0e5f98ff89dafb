// SPDX-License-Identifier: Apache-2.0
//
// The compressed formats of RIFF sound files (tags 2, 6, 7 and 11): which decoder each one has, and
// the way from the file to 16-bit PCM.
//
// What a file claims is never allocated: the encoded bytes are those that are there, and the PCM is
// refused when the encoded bytes cannot account for it by far.
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

// PCM that the encoded bytes of a file do not account for, because its blocks claim more samples
// than they hold, is silent up to this many bytes, and beyond it the file is refused.
constexpr unsigned int kMaxSilentBytes = 64U << 20;

// Null for linear PCM, and for DVI ADPCM of other than 3 or 4 bits.
[[nodiscard]] std::unique_ptr<C_MSAdpcmCodec> MakeDecoder(const C_WavFileCodecInfo& codecInfo);

// The record at a position of a file, read as far as its tag needs. None when it is cut, refused,
// or of another tag.
[[nodiscard]] std::optional<C_WavFileCodecInfo> ReadFormat(std::FILE* pFile,
                                                           std::uint64_t qwPosition,
                                                           unsigned short wFormatTag);

// At most dwLength bytes from a position on, as many as the file holds. None when the file has no
// size or cannot be positioned.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> ReadPayload(std::FILE* pFile,
                                                                   std::uint64_t qwPosition,
                                                                   unsigned int dwLength);

// Replaces PCM and format of the sound by what the bytes decode to. False, and the sound unchanged,
// when there is no decoder or the PCM would be too long.
[[nodiscard]] bool Decode(const C_WavFileCodecInfo& codecInfo,
                          const std::vector<std::uint8_t>& encoded, I_WavData& wavData);

}  // namespace compressedwav
