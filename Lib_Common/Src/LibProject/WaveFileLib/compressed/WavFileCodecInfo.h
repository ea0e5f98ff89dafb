// SPDX-License-Identifier: Apache-2.0
//
// The format record of a RIFF sound file, checked once, as its readers and the codecs use it.
//
//   offset size field
//   0      16   plain PCM format record (PcmFormatRecord.h)
//   16     2    extra size                      block codecs only (tags 2 and 11)
//   18     2    samples per block               block codecs only
//   20     2    coefficient count n             tag 2 only
//   22     4n   coefficient pairs, two i16 each tag 2 only
//
// A record is refused when its tag is none of ours, when the payload is shorter than the tag's
// record, or when a later computation would divide by one of its zeros.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "interface/PcmFormatRecord.h"

enum tagWaveFormatTag : unsigned short {
  WAVE_TAG_NONE = 0,
  WAVE_TAG_PCM = 1,
  WAVE_TAG_MS_ADPCM = 2,
  WAVE_TAG_ALAW = 6,
  WAVE_TAG_MULAW = 7,
  // Kept: 11 in decimal, not the registered 0x0011. Our own files carry it, and files of other
  // makers with 0x0011 stay refused. Pinned by Tag0x0011_IsRefused.
  WAVE_TAG_DVI_ADPCM = 11,
};

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
  // The longest record; nothing behind it is ever looked at.
  static constexpr unsigned int kMaxBytes = kMSAdpcmHeadBytes + 4 * 0xFFFF;

  [[nodiscard]] static bool IsAcceptedTag(unsigned short wFormatTag) noexcept;

  // Copies as many bytes of a "fmt " payload as the tag's record has. False, and nothing held, for
  // a record that is refused.
  [[nodiscard]] bool SetFormat(std::span<const std::uint8_t> payload);
  void Clear() noexcept { m_record.clear(); }

  // The record's bytes: 16, 20 or 22 + 4n of them; none without a record.
  [[nodiscard]] std::span<const std::uint8_t> GetRecord() const noexcept { return m_record; }

  // WAVE_TAG_NONE without a record.
  [[nodiscard]] unsigned short GetFormatTag() const noexcept;
  // Fields that the held record does not have are zero.
  [[nodiscard]] S_PcmFormatRecord GetPCMWAVEFORMAT() const noexcept;
  [[nodiscard]] S_WaveFormatEx GetWAVEFORMATEX() const noexcept;
  [[nodiscard]] S_DviAdpcmInfo GetDVIADPCMInfo() const noexcept;
  [[nodiscard]] S_MSAdpcmInfo GetMSADPCMInfo() const noexcept;
  // One pair of it, without the cost of the whole: blocks can be many and tiny.
  [[nodiscard]] S_MSAdpcmInfo::S_Coefficients GetMSADPCMCoefficients(
      std::uint8_t byPredictor) const noexcept;
  [[nodiscard]] unsigned short GetSamplesPerBlock() const noexcept;

 private:
  std::vector<std::uint8_t> m_record;
};
