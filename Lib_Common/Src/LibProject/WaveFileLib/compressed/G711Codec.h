// SPDX-License-Identifier: Apache-2.0
//
// G.711: one byte per sample, whatever the channels and the block align. The expansion values are
// the library's own, see G711Codec.cpp.
#pragma once

#include "compressed/MSAdpcmCodec.h"

// What both laws share. The class inherits the block loop and the block decoder of its base, but is
// of no use by itself.
class C_G711Codec : public C_MSAdpcmCodec {
 public:
  // Two bytes per encoded byte; empty when that does not fit in 32 bits.
  std::optional<unsigned int> GetDecodedSize(const C_WavFileCodecInfo& codecInfo,
                                             unsigned int dwEncodedBytes) override;
};

class C_MuLawCodec : public C_G711Codec {
 public:
  bool Decode(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyEncoded,
              unsigned int dwEncodedBytes, short* pSamples, unsigned int dwCapacity) override;
};

class C_ALawCodec : public C_G711Codec {
 public:
  bool Decode(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyEncoded,
              unsigned int dwEncodedBytes, short* pSamples, unsigned int dwCapacity) override;
};
