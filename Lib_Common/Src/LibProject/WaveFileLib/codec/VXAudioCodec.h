// SPDX-License-Identifier: Apache-2.0
//
// The base of the codecs whose frame coders are reached through four entry points. A codec's load
// step fills them; until then they are null.
#pragma once

class C_VXAudioCodec {
 public:
  // Both inits return 0 when ready, and another number when the bit rate is refused. The counts are
  // written in either case.
  using PFN_Init = int (*)(unsigned int dwBitRate, int* pnWordsPerFrame, int* pnSamplesPerFrame);
  // Both frame steps return 0 on success. The buffers hold one frame of words and of samples.
  using PFN_EncodeFrame = int (*)(const short* pSamples, unsigned short* pwFrameWords);
  using PFN_DecodeFrame = int (*)(const unsigned short* pwFrameWords, short* pSamples);

  C_VXAudioCodec() = default;
  virtual ~C_VXAudioCodec() = default;
  C_VXAudioCodec(const C_VXAudioCodec&) = delete;
  C_VXAudioCodec& operator=(const C_VXAudioCodec&) = delete;

  [[nodiscard]] PFN_Init GetEncoderInit() const { return m_pfnEncoderInit; }
  [[nodiscard]] PFN_EncodeFrame GetEncodeFrame() const { return m_pfnEncodeFrame; }
  [[nodiscard]] PFN_Init GetDecoderInit() const { return m_pfnDecoderInit; }
  [[nodiscard]] PFN_DecodeFrame GetDecodeFrame() const { return m_pfnDecodeFrame; }

 protected:
  PFN_Init m_pfnEncoderInit = nullptr;
  PFN_EncodeFrame m_pfnEncodeFrame = nullptr;
  PFN_Init m_pfnDecoderInit = nullptr;
  PFN_DecodeFrame m_pfnDecodeFrame = nullptr;
};
