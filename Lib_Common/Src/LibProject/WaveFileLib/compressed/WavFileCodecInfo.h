// SPDX-License-Identifier: Apache-2.0
//
// The format record of a RIFF sound file, checked once, in the form that readers and codecs use.
//
//   offset size field
//   0      16   plain PCM format record (PcmFormatRecord.h)
//   16     2    extra size                      block codecs only (tags 2 and 11)
//   18     2    samples per block               block codecs only
//   20     2    coefficient count n             tag 2 only
//   22     4n   coefficient pairs, two i16 each tag 2 only
//
// A record is refused when its tag is not in the table (WavTags.h), when the payload is shorter
// than the tag's record, or when it has a zero in a field that later computations divide by.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "compressed/WavTags.h"
#include "interface/PcmFormatRecord.h"

struct S_WaveFormatEx {
  S_PcmFormatRecord pcm;
  unsigned short wExtraSize = 0;
};

struct S_DviAdpcmInfo {
  S_WaveFormatEx wfx;
  unsigned short wSamplesPerBlock = 0;
};

struct S_MSAdpcmInfo {
  struct S_Coefficients {
    short nFirst = 0;
    short nSecond = 0;
  };

  S_WaveFormatEx wfx;
  unsigned short wSamplesPerBlock = 0;
  unsigned short wCoefficientCount = 0;  // as the file says
  // The predictor index of a block is one byte, so every index that a file can hold finds a pair;
  // pairs that the file does not define are zero.
  std::array<S_Coefficients, 256> coefficients{};
};

class C_WavFileCodecInfo {
 public:
  static constexpr unsigned int kDviAdpcmBytes = 20;
  static constexpr unsigned int kMSAdpcmHeadBytes = 22;  // up to and including the count
  // The longest record; anything after it is ignored.
  static constexpr unsigned int kMaxBytes = kMSAdpcmHeadBytes + 4 * 0xFFFF;

  [[nodiscard]] static bool IsAcceptedTag(unsigned short wFormatTag) noexcept {
    return wavtags::Find(wFormatTag) != nullptr;
  }

  // Copies as many bytes of a "fmt " payload as the tag's record has. False for a record that is
  // refused; the object then holds no record.
  [[nodiscard]] bool SetFormat(std::span<const std::uint8_t> payload);
  void Clear() noexcept;

  // The 16, 20 or 22 + 4n bytes of the record; empty without a record.
  [[nodiscard]] std::span<const std::uint8_t> GetRecord() const noexcept { return m_record; }

  // WAVE_TAG_NONE without a record.
  [[nodiscard]] unsigned short GetFormatTag() const noexcept;
  // Fields that the held record does not have are zero.
  [[nodiscard]] S_PcmFormatRecord GetPCMWAVEFORMAT() const noexcept { return m_pcm; }
  [[nodiscard]] S_WaveFormatEx GetWAVEFORMATEX() const noexcept;
  [[nodiscard]] S_DviAdpcmInfo GetDVIADPCMInfo() const noexcept;
  [[nodiscard]] S_MSAdpcmInfo GetMSADPCMInfo() const noexcept;
  // Returns one coefficient pair without reading the others, because a file can have very many tiny
  // blocks.
  [[nodiscard]] S_MSAdpcmInfo::S_Coefficients GetMSADPCMCoefficients(
      std::uint8_t byPredictor) const noexcept;
  [[nodiscard]] unsigned short GetSamplesPerBlock() const noexcept { return m_wSamplesPerBlock; }

 private:
  static constexpr S_PcmFormatRecord kNoFormat = {WAVE_TAG_NONE};

  std::vector<std::uint8_t> m_record;
  // Fields of the record that are asked for with each block.
  S_PcmFormatRecord m_pcm = kNoFormat;
  unsigned short m_wSamplesPerBlock = 0;
};
