// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include "file/AudioFile.h"

namespace toolbox {

// Reads one stretch of a file in order, as float frames at another rate. Only the first two
// channels are kept. At the file's own rate the samples pass unchanged. Otherwise one filter
// converts the whole stretch, so that its length is the length of the stretch times the ratio of
// the rates.
class C_StretchReader {
 public:
  // `qwFrames` counts frames of the file; fewer are read when the file ends first.
  C_StretchReader(std::shared_ptr<C_AudioFile> pFile, SInt64 nStartFrame, UInt64 qwFrames,
                  double dOutputRate);
  ~C_StretchReader();
  C_StretchReader(const C_StretchReader&) = delete;
  C_StretchReader& operator=(const C_StretchReader&) = delete;

  // False when the file's rate cannot be converted to the output's.
  [[nodiscard]] bool IsUsable() const noexcept;
  // 1 or 2.
  [[nodiscard]] UInt32 Channels() const noexcept { return m_dwChannels; }
  // Reads interleaved frames of `Channels()` samples. Returns fewer than wanted only at the end of
  // the stretch, or where the file cannot be read: the stretch ends there.
  std::size_t Read(std::size_t nFrames, float* pSamples);
  // Why the stretch has ended before its time: see C_AudioFile::ReadFrames.
  [[nodiscard]] OSStatus Status() const noexcept { return m_nStatus; }

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
  OSStatus m_nStatus = noErr;
};

}  // namespace toolbox
