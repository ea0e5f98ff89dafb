// SPDX-License-Identifier: Apache-2.0
//
// Long sounds, 100 MB of PCM unless a length is given, in each form that WAV files hold them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "CompressedBytes.h"
#include "ExampleSound.h"

namespace longsounds {

inline constexpr std::size_t kBytes = 100'000'000;

struct S_Kind {
  const char* pszName;
  S_Blocks blocks;
  // Other programs know DVI ADPCM by this tag, and do not know it with 3 bits.
  std::uint16_t wTagOfOthers;
};
inline constexpr std::array kKinds = {
    S_Kind{"16-bits", {WAVE_TAG_PCM, 1, 2, 1, 16}, WAVE_TAG_PCM},
    S_Kind{"mu-law", {WAVE_TAG_MULAW, 1, 1, 1, 8}, WAVE_TAG_MULAW},
    S_Kind{"A-law", {WAVE_TAG_ALAW, 1, 1, 1, 8}, WAVE_TAG_ALAW},
    S_Kind{"IMA-ADPCM", {WAVE_TAG_DVI_ADPCM, 1, 256, 505, 4}, 0x11},
    S_Kind{"Microsoft-ADPCM", {WAVE_TAG_MS_ADPCM, 1, 256, 500, 4}, WAVE_TAG_MS_ADPCM},
    S_Kind{"IMA-ADPCM-3-bits", {WAVE_TAG_DVI_ADPCM, 1, 256, 673, 3}, 0},
};

// Codes that keep a sound of each kind of ADPCM about as loud as it is. Sounds that clip all the
// time would take another way.
inline constexpr std::array<std::uint8_t, 16> kMsCodes = {2, 14, 3, 13, 15, 4, 12, 4,
                                                          1, 14, 2, 13, 14, 4, 12, 12};
inline constexpr std::array<std::uint8_t, 16> kImaCodes = {1, 9, 2, 10, 3, 11, 4,  12,
                                                           0, 8, 1, 9,  4, 12, 10, 4};
inline constexpr std::array<std::uint8_t, 16> kIma3BitCodes = {0, 4, 0, 4, 0, 4, 1, 5,
                                                               1, 5, 2, 6, 3, 7, 3, 7};

inline const std::array<std::uint8_t, 16>& Codes(const S_Blocks& blocks) {
  if (blocks.wTag == WAVE_TAG_MS_ADPCM) return kMsCodes;
  return blocks.wBits == 3 ? kIma3BitCodes : kImaCodes;
}

constexpr std::size_t EncodedBytes(const S_Blocks& blocks, std::size_t cbPcm = kBytes) {
  return cbPcm / 16 * blocks.wBits;
}
// The last block need not be whole, and not everybody decodes it then.
constexpr std::size_t SamplesOfWholeBlocks(const S_Blocks& blocks, std::size_t cbPcm = kBytes) {
  return EncodedBytes(blocks, cbPcm) / blocks.wBlockAlign * blocks.wSamplesPerBlock;
}

// Any codes of G.711, or chosen codes one after the other, from the lowest bit of each byte on.
inline C_Bytes Encoded(const S_Blocks& blocks, std::size_t cbPcm) {
  if (blocks.wTag == WAVE_TAG_PCM) return C_Bytes(cbPcm, 3);
  const bool bAdpcm = blocks.wBits < 8;
  C_Bytes bytes(EncodedBytes(blocks, cbPcm));
  std::uint32_t dwNoise = 1;
  std::uint32_t dwBits = 0;
  unsigned int nBits = 0;
  for (std::uint8_t& by : bytes) {
    for (; nBits < 8; nBits += blocks.wBits) {
      dwNoise = dwNoise * 1664525 + 1013904223;
      dwBits |= (bAdpcm ? Codes(blocks)[dwNoise >> 28] : dwNoise >> 24) << nBits;
    }
    by = static_cast<std::uint8_t>(dwBits);
    dwBits >>= 8;
    nBits -= 8;
  }
  return bytes;
}

// Puts a head of the same quiet sound before each block of ADPCM.
inline void PutHeads(const S_Blocks& blocks, C_Bytes& bytes) {
  for (std::size_t i = 0; i + blocks.wBlockAlign <= bytes.size(); i += blocks.wBlockAlign) {
    const bool bMs = blocks.wTag == WAVE_TAG_MS_ADPCM;
    for (std::size_t k = 0; k < (bMs ? 7 : 4); ++k) bytes[i + k] = 0;
    bytes[i + (bMs ? 1 : 2)] = 60;
  }
}

inline C_Bytes FormatRecord(S_Blocks blocks, bool bForOthers, std::uint16_t wTagOfOthers) {
  if (blocks.wTag == WAVE_TAG_PCM) return FmtBytes(WAVE_TAG_PCM, 1, 16000, 16);
  if (!bForOthers || blocks.wTag == wTagOfOthers) return BlockFmt(blocks);
  return Join({U16(wTagOfOthers), U16(1), U32(8000), U32(8000), U16(blocks.wBlockAlign),
               U16(blocks.wBits), U16(2), U16(blocks.wSamplesPerBlock)});
}

// A WAV file that holds a long sound, for us or for others.
inline C_Bytes File(const S_Kind& kind, bool bForOthers, std::size_t cbPcm = kBytes) {
  C_Bytes encoded = Encoded(kind.blocks, cbPcm);
  if (kind.blocks.wBits < 8) PutHeads(kind.blocks, encoded);
  return C_RiffBytes("WAVE")
      .Chunk("fmt ", FormatRecord(kind.blocks, bForOthers, kind.wTagOfOthers))
      .Chunk("data", encoded)
      .Take();
}

inline C_SoundPtr Pcm(unsigned int dwBytes = kBytes) {
  C_SoundPtr sound(new C_WavData);
  unsigned char* const pbyPcm = sound->AllocBuffer(dwBytes);
  for (unsigned int i = 0; i < dwBytes; ++i) pbyPcm[i] = static_cast<unsigned char>(i * 31);
  sound->SetWavInfoData(16000, dwBytes, 1, 16, 16, true);
  return sound;
}

}  // namespace longsounds
