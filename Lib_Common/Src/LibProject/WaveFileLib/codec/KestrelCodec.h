// SPDX-License-Identifier: Apache-2.0
//
// Kestrel, the wide-band speech codec: a whole sound of 16 kHz, 16-bit mono PCM to one stream and
// back. Little-endian:
//
//   offset size  field
//   0      4     length in bytes of what follows this field (2 + n * W * 2)
//   4      2     bit rate in bit/s
//   6      n*W*2 n frames of W = bit rate / 800 words of 16 bits; each holds 320 samples (20 ms)
//
// The frame coder keeps its state in process-wide storage: at most one Kestrel encode and one
// Kestrel decode may run at a time in a process. Both work through a temporary file, which is gone
// when they return, also by an exception of a callback.
#pragma once

#include "codec/VXAudioCodec.h"
#include "interface/CodecCallback.h"

class I_WavData;

class C_KestrelCodec : public C_VXAudioCodec {
 public:
  static constexpr unsigned int kDefaultBitRate = 16000;

  // Binds the frame coder; always true. Called before each Encode and Decode, which are false
  // without it. The bit rate has no influence.
  bool LoadCodec(unsigned int dwBitRate);

  // The rates that Encode takes: 7200, 9600, 12000, 14400, 16000, 20000, 24000 and 32000 bit/s.
  // Decode takes every multiple of 800 from 4800 to 32000.
  [[nodiscard]] bool IsSupportedBitRate(unsigned int dwBitRate) const;

  // Decodes a stream of dwEncDataLen bytes into a new PCM buffer of piWavData, whose format is left
  // as it is. pfnData may be null; it gets the samples of each frame.
  //
  // The length field says how many frames there are, and it must claim whole frames. Where the
  // bytes end before the claim, the rest of the frame that they cut is taken as zero words and
  // decoding ends behind it, successfully: a file cut short plays what it holds. False, before the
  // first frame, when they hold less than a sixteenth of the claim, and when the PCM would not fit
  // 32 bits.
  //
  // A null piWavData stops the program, or is false where assertions of the codec are compiled out
  // (NDEBUG).
  bool Decode(const unsigned char* pbyEncData, unsigned int dwEncDataLen, I_WavData* piWavData,
              PFN_DecodedData pfnData);

  // Encodes the PCM of piWavData, which must be 16-bit mono; its sample rate is not looked at.
  // Bit rate 0 means kDefaultBitRate. On success *ppbyEncData is a new array of *pdwEncDataLen
  // bytes, which the caller frees with array delete; on failure they are null and 0. pfnProgress
  // may be null.
  //
  // A null piWavData, ppbyEncData or pdwEncDataLen stops the program, or is false where assertions
  // of the codec are compiled out (NDEBUG).
  bool Encode(I_WavData* piWavData, unsigned int dwBitRate, unsigned char** ppbyEncData,
              unsigned int* pdwEncDataLen, PFN_CodecProgress pfnProgress);
};
static_assert(sizeof(C_KestrelCodec) == sizeof(C_VXAudioCodec));
