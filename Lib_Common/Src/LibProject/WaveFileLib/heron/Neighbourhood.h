// SPDX-License-Identifier: Apache-2.0
//
// Estimates how large a coefficient is from its neighbours: the three below it in the frame and the
// five around it in the previous frame. Their weighted sum chooses the table that the coefficient
// is coded with.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace heron {

// The last three magnitudes of a frame in half steps, the nearest first.
struct S_Below {
  std::int32_t n1 = 0;
  std::int32_t n2 = 0;
  std::int32_t n3 = 0;

  [[nodiscard]] constexpr S_Below Then(std::int32_t nMagnitude) const noexcept {
    return {nMagnitude, n1, n2};
  }
};

// An expectation counts 64ths of a half step. It is kLeastExpectation plus the sum of the
// neighbours' magnitudes, in half steps, times these weights. With these weights, a Laplace
// distribution with that mean spends the fewest bits on recorded speech at 8 and 16 kHz, over all
// depths of 2 to 6 bits together. Expectations serve only to choose tables. The tables were counted
// under these weights, so they make up for any bias that the weights leave.
inline constexpr std::int32_t kWeightBelow1 = 30;
inline constexpr std::int32_t kWeightBelow2 = 12;
inline constexpr std::int32_t kWeightBelow3 = 5;
inline constexpr std::int32_t kWeightBefore0 = 8;  // the same coefficient in the previous frame
inline constexpr std::int32_t kWeightBefore1 = 5;  // its direct neighbours there
inline constexpr std::int32_t kWeightBefore2 = 2;
// The expectation where all neighbours are zero: an eighth of a half step.
inline constexpr std::uint32_t kLeastExpectation = 8;

// The weighted sum of the neighbours below: less than 2^30 for magnitudes up to 2^24.
constexpr std::uint32_t FromBelow(const S_Below& below) noexcept {
  return static_cast<std::uint32_t>(kWeightBelow1 * below.n1 + kWeightBelow2 * below.n2 +
                                    kWeightBelow3 * below.n3);
}

// The previous frame as the frame being coded sees it.
class C_PreviousFrame {
 public:
  // nLength: coefficients per frame. The frame before the first one is silent.
  explicit C_PreviousFrame(int nLength);

  // Starts a frame with step index nIndex.
  void Begin(int nIndex) noexcept;
  // The part of the expectation of coefficient k that comes from the previous frame, including
  // kLeastExpectation. It is 8..2^31, so that FromBelow can be added to it in 32 bits.
  [[nodiscard]] std::uint32_t Expectation(std::size_t k) const noexcept { return m_expected[k]; }
  // Ends the frame: its magnitudes in half steps, each at most 2^24.
  void End(std::span<const std::int32_t> magnitudes) noexcept;

 private:
  int m_nIndex = 0;
  // Weighted sums in 64ths of a half step of m_nIndex, limited to C_Rescale::kMost.
  std::vector<std::uint32_t> m_smoothed;
  std::vector<std::uint32_t> m_expected;
};

}  // namespace heron
