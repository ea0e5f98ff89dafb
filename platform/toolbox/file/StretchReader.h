// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include "file/AudioFile.h"

namespace toolbox {

// Reads one stretch of a file as float frames at another rate, in order. Of more than two channels
// the first two are kept. At the file's own rate samples pass unchanged; otherwise the whole
// stretch is converted with one filter, so that its length is the stretch's times the ratio of the
// rates.
class C_StretchReader {
 public:
  // `qwFrames` are the file's own; fewer come when the file ends first.
  C_StretchReader(std::shared_ptr<C_AudioFile> pFile, SInt64 nStartFrame, UInt64 qwFrames,
                  double dOutputRate);
  ~C_StretchReader();
  C_StretchReader(const C_StretchReader&) = delete;
  C_StretchReader& operator=(const C_StretchReader&) = delete;

  // False when the rates cannot be converted into each other.
  [[nodiscard]] bool IsUsable() const noexcept;
  // 1 or 2.
  [[nodiscard]] UInt32 Channels() const noexcept { return m_dwChannels; }
  // Interleaved frames of `Channels()` samples; fewer than asked only at the end of the stretch.
  std::size_t Read(std::size_t nFrames, float* pSamples);

 private:
  struct S_Converter;
  static std::size_t FeedConverter(void* pThis, const void** ppData, std::size_t nFrames);
  std::size_t ReadFromFile(std::size_t nFrames, float* pSamples);

  std::shared_ptr<C_AudioFile> m_pFile;
  SInt64 m_nNextFrame;
  UInt64 m_qwFramesLeft;
  UInt32 m_dwChannels;
  std::vector<float> m_fileFrames;
  std::vector<float> m_converterInput;
  std::unique_ptr<S_Converter> m_pConverter;
  bool m_bSameRate;
};

}  // namespace toolbox
