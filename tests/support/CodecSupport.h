// SPDX-License-Identifier: Apache-2.0
//
// Calls decoders of compressed WAV data with their format records, on memory whose end is watched.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "CompressedBytes.h"
#include "compressed/MSAdpcmCodec.h"

using C_Samples = std::vector<short>;

inline C_WavFileCodecInfo InfoOf(const C_Bytes& fmt) {
  C_WavFileCodecInfo info;
  EXPECT_TRUE(info.SetFormat(fmt));
  return info;
}
inline C_WavFileCodecInfo InfoOf(const S_Blocks& blocks) { return InfoOf(BlockFmt(blocks)); }

// The value of a sample that no decoder wrote.
constexpr short kUntouched = 0x5A5A;

// Room for samples. Detects writes past its end in any build.
class C_Room {
 public:
  explicit C_Room(unsigned int dwBytes)
      : m_dwBytes(dwBytes), m_samples(dwBytes / 2 + 16, kUntouched) {}
  ~C_Room() {
    const auto* const pbyRoom = reinterpret_cast<const unsigned char*>(m_samples.data());
    EXPECT_TRUE(std::all_of(pbyRoom + m_dwBytes, pbyRoom + m_samples.size() * 2,
                            [](unsigned char byGuard) { return byGuard == 0x5A; }))
        << "bytes are written beyond room for " << m_dwBytes;
  }
  C_Room(const C_Room&) = delete;
  C_Room& operator=(const C_Room&) = delete;

  short* Data() { return m_samples.data(); }
  // The whole samples that fit into the room.
  [[nodiscard]] C_Samples Samples() const {
    return {m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(m_dwBytes / 2)};
  }

 private:
  unsigned int m_dwBytes;
  C_Samples m_samples;
};

// The decoded samples, or kUntouched where no sample was written.
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
