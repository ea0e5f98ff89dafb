// SPDX-License-Identifier: Apache-2.0
//
// The samples of a sound as a speech encoder takes them: 16 bits and one channel. They are those
// that I_WavData::CreateBitsConvertedData(16, 16, true, true) and then I_WavData::ConvertToMono
// give, but sounds of one or two channels are converted piece by piece while they are read, and
// those that have this form already are not copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "interface/I_WavData.h"
#include "sound/WavInfo.h"

class C_MonoSamples {
 public:
  // 16-bit mono PCM, little-endian, which must outlive the object.
  explicit C_MonoSamples(std::span<const std::uint8_t> pcm);
  // Empty when the sound cannot be converted. The samples stay until the object is gone, even when
  // the sound gets others in other memory. Only attached memory must stay by itself.
  static std::optional<C_MonoSamples> Of(I_WavData& wavData);

  // Samples in all.
  [[nodiscard]] unsigned int Count() const { return m_dwCount; }
  // Gives the next samples. After the last one it gives zeros.
  void Read(std::span<short> samples);

 private:
  C_MonoSamples() = default;
  static std::optional<C_MonoSamples> OfWhole(I_WavData& wavData);
  void NextPiece();

  unsigned int m_dwCount = 0;
  std::span<const std::uint8_t> m_pcm;  // the samples that come next, in this form
  C_WavDataPtr m_converted;             // what m_pcm refers to, if it was converted
  // What is still to be converted, in pieces, its format, and what keeps it.
  std::span<unsigned char> m_source;
  C_WavInfo m_sourceInfo;
  std::shared_ptr<const void> m_kept;
  unsigned int m_dwNextFrame = 0;
  unsigned int m_dwEndFrame = 0;
};
