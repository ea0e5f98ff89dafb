// SPDX-License-Identifier: Apache-2.0
//
// Heron, the family of codecs for sound at 2 to 6 bits per sample. It turns a whole sound into one
// stream (HeronStream.h) and back.
//
// The stream takes no more than its bits per sample, events aside. Only short sounds may take more,
// 16 bytes and 2 bits per sample, but no more than 128 bytes: those of up to 511, 125, 61, 41 or 30
// samples at 2, 3, 4, 5 or 6 bits.
//
// Events and progress count frames of 20 ms. Sample rates from 4000 to 48000 Hz are accepted. The
// encoder works through two temporary files, which it removes before it returns, even when a
// callback throws. Codecs are independent of each other: any number may work at the same time, each
// in one thread.
#pragma once

#include <optional>

#include "codec/VXAudioCodec.h"
#include "interface/CodecCallback.h"

class I_AudioCodecParam;
class I_WavData;
namespace tempstream {
struct S_Written;
}

// The frame coder takes whole sounds, so the entry points of the base class stay null.
class C_HeronCodec : public C_VXAudioCodec {
 public:
  // Shows the progress of Encode on standard output; off in a new codec.
  void SetVerbose(bool bVerbose) { m_bVerbose = bVerbose; }
  [[nodiscard]] bool IsVerbose() const { return m_bVerbose; }

  // Decodes a stream of dwEncDataLen bytes at the sample rate of piWavData. The sound gets a new
  // PCM buffer of 16 bits and one channel, with as many samples as were encoded. The events of the
  // stream are not read: they hold only the low bytes of the commands, from which no event can be
  // made.
  //
  // The audio of more than about 4 s consists of blocks (heron/Decoder.h). A block that is missing
  // or damaged becomes silence, and a stream that is cut ends with its last whole block. False,
  // with the sound unchanged, for a null argument, a sample rate outside the range above, a wrong
  // head, and a stream of which no block is right. Also false when the samples take 4 GiB or more,
  // and when more blocks are missing than are there and the difference is more than 64 MiB of PCM.
  bool Decode(const unsigned char* pbyEncData, unsigned int dwEncDataLen, I_WavData* piWavData);

  // Encodes the sound, of any supported width and number of channels (MonoMix.h), with its events,
  // as the variant dwTypeCode (AUDIO_FILE_HERON_2BIT ... AUDIO_FILE_HERON_6BIT). piParam has no
  // effect and may be null, because the variant decides everything. pfnProgress may be null; it
  // gets records of kind kProgress with the number of 32-frame groups that are done. The last
  // record reports all groups.
  //
  // On success *ppbyEncData is a new array of *pdwEncDataLen bytes, which the caller frees with
  // delete[]. On failure they are null and 0. False for any other null argument, for an unknown
  // variant, for a sample rate outside the range above, and for a sound without samples. Also false
  // for a sound with events whose audio takes 16 MiB or more, because the offset of the events has
  // only 24 bits, and when a temporary file cannot be written.
  bool Encode(I_WavData* piWavData, unsigned int dwTypeCode, I_AudioCodecParam* piParam,
              PFN_CodecProgress pfnProgress, unsigned char** ppbyEncData,
              unsigned int* pdwEncDataLen);

 private:
  friend class C_HeronFileBase;

  // The same, but the stream stays in a file, which has no name any more. Empty on failure.
  std::optional<tempstream::S_Written> EncodeToFile(I_WavData* piWavData, unsigned int dwTypeCode,
                                                    PFN_CodecProgress pfnProgress);

  bool m_bVerbose = false;
};
