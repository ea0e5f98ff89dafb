// SPDX-License-Identifier: Apache-2.0
//
// RIFF files with compressed sounds. None of our own code writes such files.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "WavBytes.h"
#include "compressed/WavFileCodecInfo.h"

// 16-bit values as the bytes of a file.
inline C_Bytes Shorts(std::initializer_list<int> values) {
  C_Bytes bytes;
  for (const int nValue : values) bytes = Join({bytes, U16(static_cast<std::uint16_t>(nValue))});
  return bytes;
}

// What the fields of a compressed format record say.
struct S_Blocks {
  std::uint16_t wTag = WAVE_TAG_DVI_ADPCM;
  std::uint16_t wChannels = 1;
  std::uint16_t wBlockAlign = 0;
  std::uint16_t wSamplesPerBlock = 0;
  std::uint16_t wBits = 4;
  std::uint32_t dwRate = 8000;
};

// The seven pairs that every MS ADPCM file of other programs has.
inline C_Bytes StandardPairs() {
  return Shorts({256, 0, 512, -256, 0, 0, 192, 64, 240, 0, 460, -208, 392, -232});
}

// The "fmt " payload. For tag 2 it has these coefficient pairs.
inline C_Bytes BlockFmt(const S_Blocks& blocks, const C_Bytes& pairs = StandardPairs()) {
  const C_Bytes fmt = Join({U16(blocks.wTag), U16(blocks.wChannels), U32(blocks.dwRate),
                            U32(blocks.dwRate), U16(blocks.wBlockAlign), U16(blocks.wBits)});
  if (blocks.wTag == WAVE_TAG_MS_ADPCM) {
    const auto wPairs = static_cast<std::uint16_t>(pairs.size() / 4);
    return Join({fmt, U16(static_cast<std::uint16_t>(4 + pairs.size())),
                 U16(blocks.wSamplesPerBlock), U16(wPairs), pairs});
  }
  if (blocks.wTag == WAVE_TAG_DVI_ADPCM) return Join({fmt, U16(2), U16(blocks.wSamplesPerBlock)});
  return fmt;
}

inline C_RiffBytes CompressedWav(const S_Blocks& blocks, const C_Bytes& encoded,
                                 std::string_view formType = "WAVE") {
  C_RiffBytes riff(formType);
  riff.Chunk("fmt ", BlockFmt(blocks)).Chunk("data", encoded);
  return riff;
}

// One shape of each kind: MS ADPCM, A-law, mu-law, DVI ADPCM of 4 and of 3 bits.
inline std::vector<S_Blocks> OneOfEachKind() {
  return {{WAVE_TAG_MS_ADPCM, 2, 24, 12, 4},
          {WAVE_TAG_ALAW, 1, 1, 0, 8},
          {WAVE_TAG_MULAW, 2, 2, 0, 8},
          {WAVE_TAG_DVI_ADPCM, 2, 24, 17, 4},
          {WAVE_TAG_DVI_ADPCM, 1, 16, 33, 3}};
}
