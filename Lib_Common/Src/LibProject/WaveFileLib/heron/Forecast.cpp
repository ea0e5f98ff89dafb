// SPDX-License-Identifier: Apache-2.0
#include "heron/Forecast.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <functional>

#include "heron/Configuration.h"
#include "heron/FixedPoint.h"
#include "heron/Loudness.h"

namespace heron {
namespace {

constexpr int kPerOctave = 8;
constexpr int kOffsetsPerSize = 1024 / kPerOctave;
// The size of the half step of index 0, which is 2^5.
constexpr int kHalfStepSize = 5 * kPerOctave;

// The offset at which a sound takes as many bits as it should, less the one at which the sum of
// BitsOf comes to that: the mean over recorded speech at 8 and 16 kHz, by bit depth. The higher the
// rate, the smaller the share of what does not depend on it.
constexpr std::array<int, kMaxBitDepth - kMinBitDepth + 1> kBias = {1750, 1930, 2075, 2155, 2230};
constexpr int BiasOf(int nSampleRate, int nBitDepth) noexcept {
  return kBias[static_cast<std::size_t>(nBitDepth - kMinBitDepth)] + 210 -
         std::min(nSampleRate, 16000) / 50;
}

// Sections of clicks are coded as plain units where that takes fewer bits. A click follows zeros,
// and so it takes twice the bits that its size would take among others as large. These, what a
// plain unit takes beside its samples, and what its zeros take, were measured on clicks of many
// kinds.
constexpr std::uint32_t kTimesOfClick = 2;
constexpr std::uint64_t kBitsOfPlain = 45;
constexpr std::uint64_t kBitsOf16Zeros = 5;

// A loudness is at most 30.6 * 256, which is that of the largest values, and the slope at most
// 17/16. So a step is at most 65 eighths of an octave above that of offset 0, and the smallest size
// counts as 0 or more. The largest coefficient has a size below 29 * 8, and counts below kSizes.
constexpr int kSizeOf0 = 8 + 104;

// log2(1 + h^2) / 2 in units of 1/256 bit, for a coefficient of h half steps, h = 2^(nSize/8).
constexpr int kLeastSize = -8 * kPerOctave;
constexpr int kMostSize = 15 * kPerOctave;
constexpr auto kBits = [] {
  constexpr int kOneQ = 32;
  std::array<std::int32_t, kMostSize - kLeastSize> bits{};
  for (int nSize = kLeastSize; nSize < kMostSize; ++nSize) {
    // h^2 = 2^(nSize/4)
    const std::uint64_t qwSquare = static_cast<std::uint64_t>(kQuarterOctave[nSize & 3])
                                   << (kOneQ - 16 + (nSize >> 2));
    bits[static_cast<std::size_t>(nSize - kLeastSize)] =
        (Log2Q8((std::uint64_t{1} << kOneQ) + qwSquare) - kOneQ * 256) / 2;
  }
  return bits;
}();
constexpr std::int32_t BitsOf(int nSize) noexcept {
  if (nSize < kLeastSize) return 0;
  if (nSize >= kMostSize) return nSize * 256 / kPerOctave;
  return kBits[static_cast<std::size_t>(nSize - kLeastSize)];
}

// Eighths of an octave of a number of at least 1, taken as straight within each octave.
int SizeOf(std::uint32_t nMagnitude) noexcept {
  // A double, which holds it exactly, has its octave and the three bits after its first bit on top.
  constexpr int kDown = 49;
  constexpr auto kOne = static_cast<int>(std::bit_cast<std::uint64_t>(1.0) >> kDown);
  return static_cast<int>(std::bit_cast<std::uint64_t>(static_cast<double>(nMagnitude)) >> kDown) -
         kOne;
}

bool IsSilent(std::span<const std::int16_t> samples) noexcept {
  return std::ranges::all_of(samples, [](std::int16_t nSample) { return nSample == 0; });
}

// True for silence with at most a sixteenth of its samples other than 0.
bool IsOfClicks(std::span<const std::int16_t> samples) noexcept {
  const auto nSilent = static_cast<std::size_t>(std::ranges::count(samples, std::int16_t{0}));
  return samples.size() - nSilent <= samples.size() / 16;
}

}  // namespace

C_Forecast::C_Forecast(int nSampleRate, int nBitDepth)
    : m_nLength(SectionLength(nSampleRate)),
      m_nSlope(SlopeOf(nBitDepth)),
      m_nBias(BiasOf(nSampleRate, nBitDepth)),
      m_dct(m_nLength),
      m_laps(MakeLaps(m_nLength / 2)),
      m_values(m_nLength) {}

void C_Forecast::Add(std::span<const std::int16_t> block) {
  const std::size_t nSections = (block.size() + m_nLength - 1) / m_nLength;
  std::vector<std::int16_t> padded(nSections * m_nLength);
  std::ranges::copy(block, padded.begin());
  for (std::size_t nAt = 0; nAt < padded.size(); nAt += m_nLength) {
    Transform(padded, nAt);
    Count(std::span(padded).subspan(nAt, m_nLength), m_values, m_counts);
  }
}

void C_Forecast::Transform(std::span<const std::int16_t> block, std::size_t nAt) {
  S_Lapped lapped{nAt, m_nLength, m_laps, m_laps};
  if (nAt == 0) lapped.before = {};
  if (nAt + m_nLength == block.size()) lapped.after = {};
  Fold(block, lapped, m_values);
  m_dct.Transform(m_values);
}

void C_Forecast::CountSizes(std::span<const std::int32_t> values, std::uint32_t nTimes,
                            S_Counts& counts) const noexcept {
  const int nStep = WantedStep(LoudnessOf(values), m_nSlope, 0) / kOffsetsPerSize;
  std::uint32_t* const pSizes = counts.sizes.data() + kSizeOf0 - kHalfStepSize - nStep;
  for (const std::int32_t nValue : values) {
    const auto nMagnitude = static_cast<std::uint32_t>(std::abs(nValue));
    if (nMagnitude != 0) pSizes[SizeOf(nMagnitude)] += nTimes;
  }
}

C_Forecast::S_Counts C_Forecast::OfClicks(std::span<const std::int16_t> samples) const {
  S_Counts counts;
  std::vector<std::int32_t> values;
  for (const std::int32_t nSample : samples) values.push_back(nSample * (1 << kCoefficientQ));
  CountSizes(values, kTimesOfClick, counts);
  const std::size_t nUnitLength = m_nLength / kSectionUnits;
  for (std::size_t nAt = 0; nAt < m_nLength; nAt += nUnitLength) {
    if (IsSilent(samples.subspan(nAt, nUnitLength))) continue;
    counts.qwOther += kBitsOfPlain + nUnitLength * kBitsOf16Zeros / 16;
  }
  return counts;
}

void C_Forecast::Count(std::span<const std::int16_t> samples,
                       std::span<const std::int32_t> coefficients, S_Counts& counts) const {
  if (IsOfClicks(samples)) {
    S_Counts transformed;
    CountSizes(coefficients, 1, transformed);
    const S_Counts plain = OfClicks(samples);
    if (BitsAt(plain, 0) < BitsAt(transformed, 0)) {
      std::ranges::transform(counts.sizes, plain.sizes, counts.sizes.begin(), std::plus{});
      counts.qwOther += plain.qwOther;
      return;
    }
  }
  CountSizes(coefficients, 1, counts);
}

void C_Forecast::Remove(const S_Counts& counts) noexcept {
  std::ranges::transform(m_counts.sizes, counts.sizes, m_counts.sizes.begin(), std::minus{});
  m_counts.qwOther -= counts.qwOther;
}

std::uint64_t C_Forecast::BitsAt(const S_Counts& counts, int nOffset) const noexcept {
  // Between the sizes, the bits are taken as straight.
  const int nTotal = nOffset - m_nBias + kSizeOf0 * kOffsetsPerSize;
  const int nDown = (nTotal + kOffsetsPerSize - 1) / kOffsetsPerSize;
  const int nRest = nDown * kOffsetsPerSize - nTotal;
  std::int64_t nBits = 0;
  std::int64_t nLower = BitsOf(-nDown);
  for (int n = 0; n < kSizes; ++n) {
    const std::int64_t nUpper = BitsOf(n + 1 - nDown);
    const std::int64_t nEach = nLower * (kOffsetsPerSize - nRest) + nUpper * nRest;
    nBits += nEach * counts.sizes[static_cast<std::size_t>(n)];
    nLower = nUpper;
  }
  return static_cast<std::uint64_t>(nBits) / (std::uint64_t{256} * kOffsetsPerSize) +
         counts.qwOther;
}

int C_Forecast::OffsetFor(std::uint64_t qwBits) const noexcept {
  int nLeast = kLeastOffset;
  int nMost = kMostOffset;
  while (nLeast < nMost) {
    const int nMiddle = nLeast + (nMost - nLeast) / 2;
    if (BitsAt(nMiddle) <= qwBits) {
      nMost = nMiddle;
    } else {
      nLeast = nMiddle + 1;
    }
  }
  return nMost;
}

std::int64_t C_Forecast::BytesPerOctave(int nOffset) const noexcept {
  // The slope over a quarter of an octave.
  constexpr int kAround = 128;
  const std::uint64_t qwBits = BitsAt(nOffset - kAround) - BitsAt(nOffset + kAround);
  return static_cast<std::int64_t>(qwBits * 4 / 8);
}

}  // namespace heron
