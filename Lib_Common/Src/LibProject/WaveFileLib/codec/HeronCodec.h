// SPDX-License-Identifier: Apache-2.0
//
// Heron, the family of codecs for sound at 2 to 6 bits per sample: a whole sound to one stream
// (HeronStream.h) and back.
//
// The unit of the audio and of the events is a frame of 20 ms. Sample rates from 4000 to 48000 Hz
// are taken. The encoder works through two temporary files, which are gone when it returns, also by
// an exception of a callback. Codecs are independent of each other: any number may work at the same
// time, each in one thread.
#pragma once

#include "codec/VXAudioCodec.h"
#include "interface/CodecCallback.h"

class I_AudioCodecParam;
class I_WavData;

// The frame coder takes whole sounds, so that the entry points of the base stay null.
class C_HeronCodec : public C_VXAudioCodec {
 public:
  // Shows the progress of Encode on standard output; off in a new codec.
  void SetVerbose(bool bVerbose) { m_bVerbose = bVerbose; }
  [[nodiscard]] bool IsVerbose() const { return m_bVerbose; }

  // Decodes a stream of dwEncDataLen bytes at the sample rate of piWavData into a new PCM buffer of
  // 16 bits and one channel, with as many samples as were encoded. The events of the stream are not
  // looked at: their bytes hold the low halves of the commands only, from which no event can be
  // made. False, and the sound as it was, for null, another sample rate, and whatever no encoder
  // writes.
  bool Decode(const unsigned char* pbyEncData, unsigned int dwEncDataLen, I_WavData* piWavData);

  // Encodes the sound, of any supported width and number of channels (MonoMix.h), with its events
  // as the variant dwTypeCode (AUDIO_FILE_HERON_2BIT ... AUDIO_FILE_HERON_6BIT). The codec
  // parameters have no influence: the variant says it all. pfnProgress may be null; it gets records
  // of kind kProgress with the number of 32-frame groups that are done, the last one with all.
  //
  // On success *ppbyEncData is a new array of *pdwEncDataLen bytes, which the caller frees with
  // array delete; on failure they are null and 0. False for null, for an unknown variant, another
  // sample rate and a sound without samples, and for a sound with events whose audio takes 16 MiB
  // or more, which their offset could not reach over.
  bool Encode(I_WavData* piWavData, unsigned int dwTypeCode, I_AudioCodecParam* piParam,
              PFN_CodecProgress pfnProgress, unsigned char** ppbyEncData,
              unsigned int* pdwEncDataLen);

 private:
  bool m_bVerbose = false;
};
