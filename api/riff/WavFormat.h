// SPDX-License-Identifier: Apache-2.0
//
// The "fmt " payload of a RIFF sound file.
//
//   tag     samples                  extra to what the class library reads
//   1       PCM                      24 bits, and widths between those of whole bytes
//   2       MS ADPCM
//   3       float of 32 or 64 bits   the tag
//   6, 7    A-law, mu-law
//   11      DVI ADPCM of 3, 4 bits
//   0xFFFE  extensible: PCM, float, A-law or mu-law, as its sub-format says   the tag
//
// Records of the tags 1, 2, 6, 7 and 11 are refused exactly where the class library refuses them
// (WavFileCodecInfo.h). It also takes PCM of any other width, and DVI ADPCM of any, but can give no
// sample of them; here such a format is understood, and IsReadable is false.
//
// A PCM sample takes as many bytes as its bits need. Where the block align gives samples more room,
// up to 4 bytes, that counts for the widths that are no whole 1, 2 or 4 bytes. Values are taken as
// they are: samples of 12 bits in 16 use the high ones, as others write them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "voxplay.h"

namespace api {

struct S_WavFormat {
  std::uint16_t wTag = 0;  // as the record says
  voxplay_codec eCodec = VOXPLAY_CODEC_NONE;
  std::uint16_t wChannels = 0;
  std::uint32_t dwSampleRate = 0;
  std::uint16_t wBits = 0;        // of PCM and float: the significant ones; otherwise as said
  std::uint16_t wStoredBits = 0;  // of PCM and float: the room of a sample
  // Of the coded samples; 0 when it is not known or does not fit.
  std::uint32_t dwBitsPerSecond = 0;
  // Of tags 2, 6, 7 and 11, also when an extensible record names them: the record of the plain tag.
  std::vector<std::uint8_t> record;

  [[nodiscard]] bool IsSampled() const noexcept {
    return eCodec == VOXPLAY_CODEC_PCM || eCodec == VOXPLAY_CODEC_FLOAT;
  }
  // Whether samples of this width can be read.
  [[nodiscard]] bool IsReadable() const noexcept;
  // "PCM of 16 bits, 2 channels, 44100 Hz".
  [[nodiscard]] std::string Text() const;
};

// The longest part of a payload that is looked at.
inline constexpr std::uint64_t kMaxFormatBytes = 22 + 4 * 0xFFFF;

// Throws C_Failure: VOXPLAY_UNSUPPORTED for a tag that is not read, and VOXPLAY_DAMAGED for a
// record that is too short or has a zero where that makes no sense.
S_WavFormat ReadWavFormat(std::span<const std::uint8_t> payload);

}  // namespace api
