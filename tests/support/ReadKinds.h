// SPDX-License-Identifier: Apache-2.0
//
// Sounds that the public interface reads: those that it writes, and those that only others write.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "CompressedBytes.h"
#include "PublicSounds.h"

inline bool IsReadOnly(const S_PublicKind& kind) {
  return kind.format.codec >= VOXPLAY_CODEC_MULAW && kind.format.codec <= VOXPLAY_CODEC_DVI3;
}

inline voxplay_codec CodecOf(const S_Blocks& blocks) {
  switch (blocks.wTag) {
    case WAVE_TAG_MS_ADPCM:
      return VOXPLAY_CODEC_MS_ADPCM;
    case WAVE_TAG_ALAW:
      return VOXPLAY_CODEC_ALAW;
    case WAVE_TAG_MULAW:
      return VOXPLAY_CODEC_MULAW;
    default:
      return blocks.wBits == 3 ? VOXPLAY_CODEC_DVI3 : VOXPLAY_CODEC_DVI4;
  }
}

inline std::string NameOf(const S_Blocks& blocks) {
  switch (CodecOf(blocks)) {
    case VOXPLAY_CODEC_MS_ADPCM:
      return "MsAdpcm";
    case VOXPLAY_CODEC_ALAW:
      return "ALaw";
    case VOXPLAY_CODEC_MULAW:
      return "MuLaw";
    default:
      return blocks.wBits == 3 ? "Dvi3" : "Dvi4";
  }
}

inline std::vector<S_PublicKind> ReadOnlyKinds() {
  std::vector<S_PublicKind> kinds;
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const auto format = FormatOf(VOXPLAY_CONTAINER_WAV, CodecOf(blocks), blocks.wBits,
                                 blocks.dwRate, blocks.wChannels);
    kinds.push_back({NameOf(blocks), format});
  }
  return kinds;
}

inline std::vector<S_PublicKind> ReadKinds() {
  auto kinds = PublicKinds();
  const auto more = ReadOnlyKinds();
  kinds.insert(kinds.end(), more.begin(), more.end());
  return kinds;
}

// Whole blocks for so many frames or a few more. Every byte means something to these codecs.
inline std::vector<std::uint8_t> CompressedBytes(const S_Blocks& blocks, std::size_t nFrames) {
  const std::size_t nPerBlock = std::max<std::size_t>(blocks.wSamplesPerBlock, 1);
  C_Bytes encoded((nFrames + nPerBlock - 1) / nPerBlock * blocks.wBlockAlign);
  std::uint32_t dwSeed = 5;
  for (std::uint8_t& byCode : encoded) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    byCode = static_cast<std::uint8_t>(dwSeed >> 24);
  }
  return CompressedWav(blocks, encoded).Take();
}

// A file of a kind with at least so many frames.
inline std::vector<std::uint8_t> SoundBytes(const S_PublicKind& kind, std::size_t nFrames) {
  for (const S_Blocks& blocks : OneOfEachKind()) {
    if (NameOf(blocks) == kind.strName) return CompressedBytes(blocks, nFrames);
  }
  return WrittenBytes(kind.format, PublicSamples(nFrames, kind.format.channels));
}
