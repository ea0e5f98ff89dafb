// SPDX-License-Identifier: Apache-2.0
//
// The compressed formats of RIFF sound files (tags 2, 6, 7 and 11): which decoder each format has,
// and how a file becomes 16-bit PCM.
//
// Memory is not allocated for what a file merely claims: PCM is refused when it is far longer than
// the encoded bytes that the file holds can account for. These bytes are read and decoded in
// pieces, straight into the PCM of the sound.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "FileReader.h"
#include "compressed/MSAdpcmCodec.h"
#include "compressed/WavFileCodecInfo.h"
#include "interface/I_WavData.h"

namespace compressedwav {

// The blocks of a file may claim more samples than they hold. Up to this many bytes of PCM that the
// encoded bytes do not account for are silence; beyond that, the file is refused.
constexpr unsigned int kMaxSilentBytes = 64U << 20;
// Whether a file with so many bytes of PCM and so many encoded bytes is not refused for that.
[[nodiscard]] bool IsAccountedFor(std::uint64_t qwPcm, std::uint64_t qwEncoded);

// Null for linear PCM, for a tag that the library does not read, and for DVI ADPCM of a width other
// than 3 or 4 bits.
[[nodiscard]] std::unique_ptr<C_MSAdpcmCodec> MakeDecoder(const C_WavFileCodecInfo& codecInfo);

// The format record at byte qwPosition of a file, read as far as its tag needs. Empty when the
// record is cut, is refused, or has another tag.
[[nodiscard]] std::optional<C_WavFileCodecInfo> ReadFormat(vcm::C_FileReader& file,
                                                           std::uint64_t qwPosition,
                                                           unsigned short wFormatTag);

// Replaces PCM and format of the sound by what dwLength bytes from qwPosition on decode to, or
// those of them that the file holds. False, with the sound unchanged, when there is no decoder,
// when the PCM would be too long, and when the file has no length. False also when it cannot be
// read.
[[nodiscard]] bool Load(const C_WavFileCodecInfo& codecInfo, vcm::C_FileReader& file,
                        std::uint64_t qwPosition, unsigned int dwLength, I_WavData& wavData);

}  // namespace compressedwav
