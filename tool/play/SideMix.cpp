// SPDX-License-Identifier: Apache-2.0
#include "play/SideMix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace tool {
namespace {

constexpr std::uint32_t kFewestNamed = 3;
// The places of 3 to 8 channels: left and right, in front and (small) behind or beside; c in the
// middle, b in the middle behind, and x for the lowest frequencies.
constexpr std::array<std::string_view, 6> kPlaces = {"LRc",    "LRlr",    "LRclr",
                                                     "LRcxlr", "LRcxblr", "LRcxlrlr"};
// Half the power on each side.
constexpr float kMiddle = 0.70710678F;
constexpr float kBehind = 0.70710678F;

char PlaceOf(std::uint32_t dwChannel, std::uint32_t dwChannels) {
  if (dwChannels >= kFewestNamed && dwChannels - kFewestNamed < kPlaces.size()) {
    return kPlaces[dwChannels - kFewestNamed][dwChannel];
  }
  return dwChannel % 2 == 0 ? 'L' : 'R';
}

float Limited(float fSample) {
  return std::isnan(fSample) ? 0.0F : std::clamp(fSample, -1.0F, 1.0F);
}

}  // namespace

C_SideMix::C_SideMix(std::uint32_t dwChannels) : m_dwChannels(dwChannels) {
  if (dwChannels < kFewestNamed) return;
  float fLeft = 0.0F;
  float fRight = 0.0F;
  for (std::uint32_t n = 0; n < dwChannels; ++n) {
    S_Weights weights;
    switch (PlaceOf(n, dwChannels)) {
      case 'L':
        weights = {1.0F, 0.0F};
        break;
      case 'R':
        weights = {0.0F, 1.0F};
        break;
      case 'l':
        weights = {kBehind, 0.0F};
        break;
      case 'r':
        weights = {0.0F, kBehind};
        break;
      case 'c':
        weights = {kMiddle, kMiddle};
        break;
      case 'b':
        weights = {kMiddle * kBehind, kMiddle * kBehind};
        break;
      default:
        break;
    }
    fLeft += weights.fLeft;
    fRight += weights.fRight;
    m_weights.push_back(weights);
  }
  // The same for both, so that nothing moves to a side.
  const float fMost = std::max(fLeft, fRight);
  for (S_Weights& weights : m_weights) weights = {weights.fLeft / fMost, weights.fRight / fMost};
}

void C_SideMix::Mix(std::span<const float> in, std::span<float> out) const {
  if (m_weights.empty()) {
    std::transform(in.begin(), in.end(), out.begin(), &Limited);
    return;
  }
  const std::size_t nFrames = in.size() / m_dwChannels;
  for (std::size_t n = 0; n < nFrames; ++n) MixFrame(&in[n * m_dwChannels], &out[n * 2]);
}

void C_SideMix::MixFrame(const float* pIn, float* pOut) const {
  float fLeft = 0.0F;
  float fRight = 0.0F;
  for (std::size_t n = 0; n < m_weights.size(); ++n) {
    const float fSample = Limited(pIn[n]);
    fLeft += m_weights[n].fLeft * fSample;
    fRight += m_weights[n].fRight * fSample;
  }
  pOut[0] = fLeft;
  pOut[1] = fRight;
}

}  // namespace tool
