// SPDX-License-Identifier: Apache-2.0
//
// IMA (DVI) ADPCM with codes of four and of three bits. A block of K channels:
//
//   offset size field
//   0      4K   of each channel: its first sample (i16), step index (u8, taken as at most 88), a
//               reserved byte
//   4K     ..   groups: for each channel in turn eight codes in 4 bytes, or 32 codes in 12 bytes
//
// Four-bit codes are stored low half first. Three-bit codes form a stream of bits, the lowest bit
// first. A code that is cut by the end of the block is not decoded.
#pragma once

#include "compressed/MSAdpcmCodec.h"

// Kept: the sizes of four-bit sounds follow the rule of MS ADPCM. It counts 6 header bytes for each
// channel although there are 4, and no sample in them although there is one. A sound whose last
// block is partial therefore ends five frames early, or more when that block is shorter than its
// header. Lengths stored beside such sounds were computed like that. Pinned by
// FourBitSizes_CountSixHeaderBytes.
class C_DVIAdpcmCodec : public C_MSAdpcmCodec {
 public:
  // Decodes (P - 1) / 8 groups at most (P as in MSAdpcmCodec.h).
  bool DecodeBlock(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyBlock,
                   short* pSamples, unsigned int dwBlockBytes, unsigned int dwCapacity) override;
};

class C_DVIAdpcm3BitCodec : public C_MSAdpcmCodec {
 public:
  // A remainder of r bytes after the whole blocks counts as (r - 6K) x 8 / 3 samples.
  std::optional<unsigned int> GetDecodedSize(const C_WavFileCodecInfo& codecInfo,
                                             unsigned int dwEncodedBytes) override;
  bool DecodeBlock(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyBlock,
                   short* pSamples, unsigned int dwBlockBytes, unsigned int dwCapacity) override;
};
