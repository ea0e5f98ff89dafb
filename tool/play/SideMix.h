// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tool {

// Makes what two ears hear of a sound: one channel stays one, two stay two, and more become two.
// Channels in the usual order of files with 3 to 8 of them go where their loudspeakers would stand;
// the one for the lowest frequencies is left out. Of other numbers the odd ones go to the left and
// the even ones to the right. Both sides are scaled so that they cannot become too loud.
//
// What is beyond full scale is brought back to it, and what is no number is silence.
class C_SideMix {
 public:
  explicit C_SideMix(std::uint32_t dwChannels);

  [[nodiscard]] std::uint32_t Sides() const noexcept { return m_dwChannels == 1 ? 1 : 2; }
  // From whole frames of the sound to as many frames of the sides.
  void Mix(std::span<const float> in, std::span<float> out) const;

 private:
  struct S_Weights {
    float fLeft = 0.0F;
    float fRight = 0.0F;
  };

  void MixFrame(const float* pIn, float* pOut) const;

  std::uint32_t m_dwChannels;
  std::vector<S_Weights> m_weights;  // none where nothing is mixed
};

}  // namespace tool
