// SPDX-License-Identifier: Apache-2.0
//
// The format tags of RIFF sound files that the library reads, in one table. A tag that is not in
// the table is refused, for example 3 (float), 0x0011 (DVI ADPCM as it is registered) and 0xFFFE
// (extensible).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

class C_MSAdpcmCodec;

enum tagWaveFormatTag : unsigned short {
  WAVE_TAG_NONE = 0,
  WAVE_TAG_PCM = 1,
  WAVE_TAG_MS_ADPCM = 2,
  WAVE_TAG_ALAW = 6,
  WAVE_TAG_MULAW = 7,
  // Kept: this is 11 in decimal, not the registered 0x0011. Our devices write it, and files of
  // other makers with 0x0011 stay refused. Pinned by Tag0x0011_IsRefused.
  WAVE_TAG_DVI_ADPCM = 11,
};

// What I_WavFileInfo::GetCodingType says of a sound in a RIFF file.
enum tagWavCoding : unsigned int {
  WAV_CODING_LINEAR = 0,
  WAV_CODING_MS_ADPCM = 1,
  WAV_CODING_DVI_ADPCM = 2,
};

struct S_WavTag {
  tagWaveFormatTag eTag;
  // Bytes of its format record; with coefficient pairs, only those up to and including their count.
  std::size_t cbHead;
  bool bCoefficients;  // the record ends with a count and that many pairs of 4 bytes
  bool bBlocks;        // the samples come in blocks, so the block align must not be 0
  // Empty: a file with this tag leaves the coding type as it was.
  std::optional<tagWavCoding> eCoding;
  // Makes the decoder for samples of wBits stored bits; returns null for a width that it does not
  // know. The pointer is null for linear PCM, which needs no decoder.
  std::unique_ptr<C_MSAdpcmCodec> (*pfnMakeDecoder)(unsigned short wBits);
};

namespace wavtags {

// Null for a tag that the library does not read.
[[nodiscard]] const S_WavTag* Find(unsigned short wFormatTag) noexcept;

// The length in bytes of the whole format record that begins with these bytes. The coefficients are
// counted only when these bytes cover the head.
[[nodiscard]] std::size_t RecordBytes(const S_WavTag& tag,
                                      std::span<const std::uint8_t> record) noexcept;

}  // namespace wavtags
