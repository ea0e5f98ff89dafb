// SPDX-License-Identifier: Apache-2.0
//
// Estimates how large a coefficient is, in one of two ways, from what writer and reader both know.
// The estimate, the expectation, chooses the table that the coefficient is coded with. It counts
// 64ths of a half step.
//
//   near     a weighted sum of its neighbours: the three below it in the part and the five around
//            it in the previous part. Right for voices, whose spectra change
//   steady   a weighted sum of two averages: over the coefficients below it in the part, and over
//            time in its band. Right for noise, where few neighbours say little
//
// Expectations serve only to choose tables. The tables were counted under these weights, so they
// make up for any bias that the weights leave.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

namespace heron {

// With these weights, a Laplace distribution whose mean is the near expectation spends the fewest
// bits on recorded speech at 8 and 16 kHz, over all depths of 2 to 6 bits together.
inline constexpr std::int32_t kWeightBelow1 = 30;
inline constexpr std::int32_t kWeightBelow2 = 12;
inline constexpr std::int32_t kWeightBelow3 = 5;
inline constexpr std::int32_t kWeightBefore0 = 8;  // the same coefficient in the previous part
inline constexpr std::int32_t kWeightBefore1 = 5;  // its direct neighbours there
inline constexpr std::int32_t kWeightBefore2 = 2;
// The weights of the steady expectation, found in the same way on noise.
inline constexpr std::uint32_t kWeightAverageBelow = 24;
inline constexpr std::uint32_t kWeightBand = 40;
// The expectation where all neighbours are zero: an eighth of a half step.
inline constexpr std::uint32_t kLeastExpectation = 8;

// What the magnitudes below a coefficient, in half steps and at most 2^24, say about it.
class C_NearBelow {
 public:
  // Less than 2^30.
  [[nodiscard]] constexpr std::uint32_t Expectation() const noexcept {
    return static_cast<std::uint32_t>(kWeightBelow1 * m_n1 + kWeightBelow2 * m_n2 +
                                      kWeightBelow3 * m_n3);
  }
  [[nodiscard]] constexpr C_NearBelow Then(std::int32_t nMagnitude) const noexcept {
    C_NearBelow next;
    next.m_n1 = nMagnitude;
    next.m_n2 = m_n1;
    next.m_n3 = m_n2;
    return next;
  }

 private:
  // The last three, the nearest first.
  std::int32_t m_n1 = 0;
  std::int32_t m_n2 = 0;
  std::int32_t m_n3 = 0;
};
class C_SteadyBelow {
 public:
  // Less than 2^29.
  [[nodiscard]] constexpr std::uint32_t Expectation() const noexcept { return m_nAverage; }
  // Each magnitude counts 3/16, those before it 13/16 of what they counted.
  [[nodiscard]] constexpr C_SteadyBelow Then(std::int32_t nMagnitude) const noexcept {
    C_SteadyBelow next;
    next.m_nAverage = m_nAverage - (m_nAverage * 3 >> 4) +
                      (static_cast<std::uint32_t>(nMagnitude) * (kWeightAverageBelow * 3 / 8) >> 1);
    return next;
  }

 private:
  std::uint32_t m_nAverage = 0;
};

// The model of the tables (Tables.h) that goes with a kind of expectation.
template <typename T_Below>
constexpr std::size_t ModelOf() noexcept {
  return std::is_same_v<T_Below, C_SteadyBelow> ? 1 : 0;
}

// The parts before one, as it sees them.
class C_PartsBefore {
 public:
  // nUnitLength: coefficients of the shortest part, and the number of bands.
  explicit C_PartsBefore(std::size_t nUnitLength);

  // Forgets the previous part: its magnitudes count as 0. The bands stay.
  void Forget() noexcept { m_nLength = 0; }
  // Starts a part of 2^nSize units, or the first nLength coefficients of one, with step index
  // nIndex. For the near expectation, when the previous part had another length, each coefficient
  // sees the magnitude at its own frequency: the mean of several, rounded down, or one that is
  // shared.
  void BeginNear(int nIndex, std::size_t nLength) noexcept;
  void BeginSteady(int nIndex, std::size_t nSize) noexcept;
  // The part of the expectation of coefficient k that comes from the parts before, including
  // kLeastExpectation. It is 8..2^31, so that what comes from below can be added in 32 bits.
  [[nodiscard]] std::uint32_t Expectation(std::size_t k) const noexcept { return m_expected[k]; }
  // The same for all coefficients from the first on.
  [[nodiscard]] std::span<const std::uint32_t> Expectations() const noexcept { return m_expected; }
  // Ends a part of 2^nSize units with this step index: its magnitudes in half steps, each at most
  // 2^24 and at most 2^29 in Q8 of the coefficients.
  void End(int nIndex, std::size_t nSize, std::span<const std::int32_t> magnitudes) noexcept;

 private:
  void Stretch(std::size_t nLength) noexcept;
  void UpdateBands(int nIndex, std::size_t nSize,
                   std::span<const std::int32_t> magnitudes) noexcept;

  int m_nIndex = 0;
  std::size_t m_nLength = 0;  // of the previous part; 0 when nothing is known
  // Magnitudes in half steps of m_nIndex, between two zeros on either side.
  std::vector<std::int32_t> m_magnitudes;
  std::vector<std::int32_t> m_stretched;  // the same for a part of another length
  // The average magnitude of the coefficients of each band, Q8. There are as many bands as a unit
  // has coefficients.
  std::vector<std::int32_t> m_bands;
  bool m_bBandsKnown = false;
  std::vector<std::uint32_t> m_expected;
};

}  // namespace heron
