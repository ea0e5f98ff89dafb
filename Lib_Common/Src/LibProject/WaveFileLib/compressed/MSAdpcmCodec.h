// SPDX-License-Identifier: Apache-2.0
//
// The base of the decoders that turn compressed WAV data into 16-bit PCM. The base is itself the
// decoder for Microsoft ADPCM. The family has no encoders: sounds are written as linear PCM or by a
// codec of our own.
//
//   class                  tag  GetDecodedSize     Decode      DecodeBlock
//   C_MSAdpcmCodec         2    ADPCM rule         block loop  MS ADPCM
//   C_DVIAdpcmCodec        11   ADPCM rule         block loop  IMA, 4 bits
//   C_DVIAdpcm3BitCodec    11   its own ADPCM rule block loop  IMA, 3 bits
//   C_G711Codec            -    two per byte       block loop  MS ADPCM
//   C_MuLawCodec           7    two per byte       its own     MS ADPCM
//   C_ALawCodec            6    two per byte       its own     MS ADPCM
//
// An MS ADPCM block of K channels:
//
//   offset size field
//   0      K    predictor of each channel: index of a coefficient pair of the format record
//   K      2K   delta of each channel, i16
//   3K     2K   the second sample of each channel, i16
//   5K     2K   the first sample of each channel, i16
//   7K     ..   half bytes, the high one first, for each channel in turn
//
// Decoders hold no state. They write samples as the PCM of a sound holds them, little-endian on
// every machine. Below, B is the block align, K the number of channels and P the samples per block
// of the format record. The block decoders decode nothing when B or K is 0.
#pragma once

#include <optional>

class C_WavFileCodecInfo;

class C_MSAdpcmCodec {
 public:
  C_MSAdpcmCodec() = default;
  virtual ~C_MSAdpcmCodec() = default;  // 0, 1
  C_MSAdpcmCodec(const C_MSAdpcmCodec&) = delete;
  C_MSAdpcmCodec& operator=(const C_MSAdpcmCodec&) = delete;

  // The number of PCM bytes that the encoded bytes count as: P x K samples for each whole block,
  // and (r - 6K) x 2 samples for a remainder of r bytes, which subtracts samples when r is smaller
  // than 6K. 0 when the sum is below 0; empty when the result does not fit in 32 bits.
  virtual std::optional<unsigned int> GetDecodedSize(const C_WavFileCodecInfo& codecInfo,
                                                     unsigned int dwEncodedBytes);  // 2
  // Decodes block by block; a remainder counts as a shorter block. Writes at most dwCapacity bytes
  // to pSamples: whole samples only, interleaved. Samples for which input is missing are left as
  // they are. Always true.
  virtual bool Decode(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyEncoded,
                      unsigned int dwEncodedBytes, short* pSamples,
                      unsigned int dwCapacity);  // 3
  // Decodes one block until its bytes end or the dwCapacity bytes at pSamples are full. A block
  // shorter than its header gives nothing. Always true.
  virtual bool DecodeBlock(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyBlock,
                           short* pSamples, unsigned int dwBlockBytes,
                           unsigned int dwCapacity);  // 4

 protected:
  // The ADPCM rule of GetDecodedSize, with (r - 6K) x nSamples / nBytes samples for the remainder,
  // rounded toward zero.
  static std::optional<unsigned int> GetAdpcmSize(const C_WavFileCodecInfo& codecInfo,
                                                  unsigned int dwEncodedBytes, int nSamples,
                                                  int nBytes);

 private:
  // Decodes some of dwBlocks whole blocks at once, the first ones, for all of which there is room,
  // and returns how many. 0 when the next block has to be decoded by itself.
  unsigned int DecodeBlocks(const C_WavFileCodecInfo& codecInfo, const unsigned char* pbyBlocks,
                            short* pSamples, unsigned int dwBlocks);
};
