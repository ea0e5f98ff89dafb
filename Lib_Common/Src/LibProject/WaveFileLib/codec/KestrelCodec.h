// SPDX-License-Identifier: Apache-2.0
//
// Kestrel, the wide-band speech codec. It turns a whole sound of 16 kHz, 16-bit mono PCM into one
// stream and back. Little-endian:
//
//   offset size  field
//   0      4     length in bytes of what follows this field (2 + n * W * 2)
//   4      2     bit rate in bit/s
//   6      n*W*2 n frames of W = bit rate / 800 words of 16 bits; each holds 320 samples (20 ms)
//
// The frame coder keeps its state in process-wide storage: at most one Kestrel encode and one
// Kestrel decode may run at a time in a process. Each works through a temporary file, which it
// removes before it returns, even when a callback throws.
#pragma once

#include <optional>

#include "codec/VXAudioCodec.h"
#include "interface/CodecCallback.h"

class C_MonoSamples;
class I_WavData;
namespace tempstream {
struct S_Written;
}

class C_KestrelCodec : public C_VXAudioCodec {
 public:
  static constexpr unsigned int kDefaultBitRate = 16000;

  // Binds the frame coder; always true. Must be called before the first Encode or Decode, which
  // return false without it. dwBitRate has no effect.
  bool LoadCodec(unsigned int dwBitRate);

  // True for the rates that Encode takes: 7200, 9600, 12000, 14400, 16000, 20000, 24000 and 32000
  // bit/s. Decode takes every multiple of 800 from 4800 to 32000.
  [[nodiscard]] bool IsSupportedBitRate(unsigned int dwBitRate) const;

  // Decodes a stream of dwEncDataLen bytes into a new PCM buffer of piWavData. The samples are
  // 16-bit mono, but only the length in the sound's format changes: callers set the rest. pfnData
  // may be null; it gets the 640 bytes of each frame.
  //
  // The length field must claim a whole number of frames. When the bytes end before that, decoding
  // still succeeds: missing words of the last frame count as zero, and later frames are left out,
  // so a file that was cut short plays as far as it goes. Decode returns false before the first
  // frame for null or a stream shorter than its head, for a rate that it does not take, and when
  // the bytes are less than a sixteenth of the claim. The same holds when the length of the PCM
  // would not fit in 32 bits, and when the temporary file cannot be made. Decode returns false
  // after the last frame when the claim ends within a frame, and when the temporary file cannot be
  // read; the sound then keeps what it had, or is empty once its memory was taken for the new one.
  //
  // A null piWavData stops the program. Where assertions of the codec are compiled out (NDEBUG),
  // the result is false instead.
  bool Decode(const unsigned char* pbyEncData, unsigned int dwEncDataLen, I_WavData* piWavData,
              PFN_DecodedData pfnData);

  // Encodes the PCM of piWavData, which must be 16-bit mono; its sample rate is ignored. Bit rate 0
  // means kDefaultBitRate. On success *ppbyEncData is a new array of *pdwEncDataLen bytes, which
  // the caller frees with delete[]. On failure they are null and 0. False for a rate that is not
  // supported, for a sound with no samples or with fewer bytes than its 16-bit samples need, and
  // when the temporary file cannot be written. pfnProgress may be null.
  //
  // A null piWavData, ppbyEncData or pdwEncDataLen stops the program. Where assertions of the codec
  // are compiled out (NDEBUG), the result is false instead.
  bool Encode(I_WavData* piWavData, unsigned int dwBitRate, unsigned char** ppbyEncData,
              unsigned int* pdwEncDataLen, PFN_CodecProgress pfnProgress);

 private:
  friend class C_KestrelFile;

  // The same for samples that are read one after another. The stream stays in a file, which has no
  // name any more. Empty on failure.
  std::optional<tempstream::S_Written> EncodeToFile(C_MonoSamples& samples, unsigned int dwBitRate,
                                                    PFN_CodecProgress pfnProgress);
};
static_assert(sizeof(C_KestrelCodec) == sizeof(C_VXAudioCodec));
