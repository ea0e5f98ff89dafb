// SPDX-License-Identifier: Apache-2.0
//
// Decoders of compressed WAV data with their format records, on memory whose end is watched.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "MSAdpcmCodec.h"
#include "WavBytes.h"
#include "WavFileCodecInfo.h"

using C_Samples = std::vector<short>;

// What the fields of a compressed format record say.
struct S_Blocks {
  std::uint16_t wTag = WAVE_TAG_DVI_ADPCM;
  std::uint16_t wChannels = 1;
  std::uint16_t wBlockAlign = 0;
  std::uint16_t wSamplesPerBlock = 0;
  std::uint16_t wBits = 4;
  std::uint32_t dwRate = 8000;
};

// The seven pairs that every MS ADPCM file of others has.
inline C_Bytes StandardPairs() {
  C_Bytes pairs;
  for (const int nValue : {256, 0, 512, -256, 0, 0, 192, 64, 240, 0, 460, -208, 392, -232})
    pairs = Join({pairs, U16(static_cast<std::uint16_t>(nValue))});
  return pairs;
}

// The "fmt " payload: for tag 2 with these coefficient pairs.
inline C_Bytes BlockFmt(const S_Blocks& blocks, const C_Bytes& pairs = StandardPairs()) {
  C_Bytes fmt = Join({U16(blocks.wTag), U16(blocks.wChannels), U32(blocks.dwRate),
                      U32(blocks.dwRate), U16(blocks.wBlockAlign), U16(blocks.wBits)});
  if (blocks.wTag == WAVE_TAG_MS_ADPCM) {
    const auto wPairs = static_cast<std::uint16_t>(pairs.size() / 4);
    return Join({fmt, U16(static_cast<std::uint16_t>(4 + pairs.size())),
                 U16(blocks.wSamplesPerBlock), U16(wPairs), pairs});
  }
  return blocks.wTag == WAVE_TAG_DVI_ADPCM ? Join({fmt, U16(2), U16(blocks.wSamplesPerBlock)})
                                           : fmt;
}

inline C_WavFileCodecInfo InfoOf(const C_Bytes& fmt) {
  C_WavFileCodecInfo info;
  EXPECT_TRUE(info.SetFormat(fmt));
  return info;
}
inline C_WavFileCodecInfo InfoOf(const S_Blocks& blocks) { return InfoOf(BlockFmt(blocks)); }

// 16-bit values as the bytes of a file.
inline C_Bytes Shorts(std::initializer_list<int> values) {
  C_Bytes bytes;
  for (const int nValue : values) bytes = Join({bytes, U16(static_cast<std::uint16_t>(nValue))});
  return bytes;
}

// What a place holds that no decoder wrote to.
constexpr short kUntouched = 0x5A5A;

// Room for samples. Finds writes behind its end, with any build.
class C_Room {
 public:
  explicit C_Room(unsigned int dwBytes)
      : m_dwBytes(dwBytes), m_samples(dwBytes / 2 + 16, kUntouched) {}
  ~C_Room() {
    const auto* const pbyRoom = reinterpret_cast<const unsigned char*>(m_samples.data());
    EXPECT_TRUE(std::all_of(pbyRoom + m_dwBytes, pbyRoom + m_samples.size() * 2,
                            [](unsigned char byGuard) { return byGuard == 0x5A; }))
        << "bytes are written behind room for " << m_dwBytes;
  }
  C_Room(const C_Room&) = delete;
  C_Room& operator=(const C_Room&) = delete;

  short* Data() { return m_samples.data(); }
  // The whole samples that there is room for.
  [[nodiscard]] C_Samples Samples() const {
    return {m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(m_dwBytes / 2)};
  }

 private:
  unsigned int m_dwBytes;
  C_Samples m_samples;
};

// The samples, kUntouched where none was written.
inline C_Samples DecodeBlock(C_MSAdpcmCodec& codec, const C_WavFileCodecInfo& info,
                             const C_Bytes& block, unsigned int dwCapacity) {
  C_Room room(dwCapacity);
  EXPECT_TRUE(codec.DecodeBlock(info, block.data(), room.Data(),
                                static_cast<unsigned int>(block.size()), dwCapacity));
  return room.Samples();
}
inline C_Samples Decode(C_MSAdpcmCodec& codec, const C_WavFileCodecInfo& info,
                        const C_Bytes& encoded, unsigned int dwCapacity) {
  C_Room room(dwCapacity);
  EXPECT_TRUE(codec.Decode(info, encoded.data(), static_cast<unsigned int>(encoded.size()),
                           room.Data(), dwCapacity));
  return room.Samples();
}
