// SPDX-License-Identifier: Apache-2.0
//
// Tells how many bits a sound will take at an offset of its steps before any of it is coded. It
// sorts the coefficients of its sections, each taken as one part, by their size in steps; how many
// bits a coefficient of a size takes is known from recorded speech. For voices and for noise, the
// offset that a number of bits asks for is foretold to about a tenth of an octave.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Dct4.h"
#include "heron/Lapping.h"

namespace heron {

class C_Forecast {
 public:
  // nSampleRate and nBitDepth must be supported.
  C_Forecast(int nSampleRate, int nBitDepth);

  static constexpr int kSizes = 336;
  struct S_Counts {
    // The number of coefficients of each size: kSizeOf0 + n is n eighths of an octave above the
    // step of offset 0.
    std::array<std::uint32_t, kSizes> sizes{};
    std::uint64_t qwOther = 0;  // bits of what is not coefficients, the same at any offset
  };

  // Counts the samples of a block.
  void Add(std::span<const std::int16_t> block);
  // Counts one section of a block: its samples, and its coefficients when all sections of the block
  // are parts.
  void Count(std::span<const std::int16_t> samples, std::span<const std::int32_t> coefficients,
             S_Counts& counts) const;
  // Takes sections out again that were added with their blocks.
  void Remove(const S_Counts& counts) noexcept;

  // The bits that the samples counted will take at an offset (Loudness.h).
  [[nodiscard]] std::uint64_t BitsAt(int nOffset) const noexcept {
    return BitsAt(m_counts, nOffset);
  }
  // The same of some sections.
  [[nodiscard]] std::uint64_t BitsAt(const S_Counts& counts, int nOffset) const noexcept;
  // The lowest offset in kLeastOffset..kMostOffset at which they take no more than so many bits;
  // kMostOffset when there is none.
  [[nodiscard]] int OffsetFor(std::uint64_t qwBits) const noexcept;

  // The bytes that twice the step size saves there.
  [[nodiscard]] std::int64_t BytesPerOctave(int nOffset) const noexcept;

  static constexpr int kLeastOffset = -12 * 1024;
  static constexpr int kMostOffset = 18 * 1024;

 private:
  // Counts values of a section as coefficients, each so many times.
  void CountSizes(std::span<const std::int32_t> values, std::uint32_t nTimes,
                  S_Counts& counts) const noexcept;
  [[nodiscard]] S_Counts OfClicks(std::span<const std::int16_t> samples) const;
  // The coefficients of the section at sample nAt of a block of whole sections.
  void Transform(std::span<const std::int16_t> block, std::size_t nAt);

  std::size_t m_nLength;  // of a section
  int m_nSlope;
  int m_nBias;
  C_Dct4 m_dct;
  std::vector<S_Lap> m_laps;
  std::vector<std::int32_t> m_values;
  S_Counts m_counts{};
};

}  // namespace heron
