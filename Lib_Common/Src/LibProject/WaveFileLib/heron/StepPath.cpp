// SPDX-License-Identifier: Apache-2.0
#include "heron/StepPath.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "heron/PartSyntax.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

// Indices up to this far from the wanted one are considered.
constexpr int kReach = 4;
constexpr std::size_t kCandidates = 2 * kReach + 1;

// What a difference of one index, squared, costs for each coefficient, in units of 1/256 bit. At a
// fixed rate, a part that is off by u nepers of noise power loses u^2 / (4 ln 2) bits a
// coefficient, which would be 11. Measured over whole sounds, half of that is best.
constexpr std::int64_t kPricePerCoefficient = 5;

struct S_Step {
  std::int64_t nCost;  // of the best path up to here, Q8 bits
  std::uint8_t byFrom;
};
using S_Steps = std::array<S_Step, kCandidates>;

int Candidate(const S_StepWish& wish, std::size_t n) {
  return std::clamp(((wish.nIndex + 128) >> 8) + static_cast<int>(n) - kReach, 0, kSteps - 1);
}

std::int64_t Loss(const S_StepWish& wish, int nIndex) {
  const std::int64_t nOff = std::int64_t{nIndex} * 256 - wish.nIndex;
  return nOff * nOff / 256 * kPricePerCoefficient * static_cast<std::int64_t>(wish.nLength) / 256;
}

}  // namespace

std::vector<int> ChooseSteps(std::span<const S_StepWish> wishes, int nBefore) {
  std::vector<S_Steps> steps(wishes.size());
  for (std::size_t n = 0; n < wishes.size(); ++n) {
    for (std::size_t i = 0; i < kCandidates; ++i) {
      const int nIndex = Candidate(wishes[n], i);
      S_Step best{0, 0};
      if (n == 0) {
        if (nBefore >= 0) best.nCost = IndexCost(nIndex - nBefore);
      } else {
        best.nCost = std::numeric_limits<std::int64_t>::max();
        for (std::size_t j = 0; j < kCandidates; ++j) {
          const std::int64_t nCost =
              steps[n - 1][j].nCost + IndexCost(nIndex - Candidate(wishes[n - 1], j));
          if (nCost < best.nCost) best = {nCost, static_cast<std::uint8_t>(j)};
        }
      }
      best.nCost += Loss(wishes[n], nIndex);
      steps[n][i] = best;
    }
  }
  std::vector<int> indices(wishes.size());
  if (wishes.empty()) return indices;
  const auto& last = steps.back();
  auto i =
      static_cast<std::size_t>(std::ranges::min_element(last, {}, &S_Step::nCost) - last.begin());
  for (std::size_t n = wishes.size(); n-- > 0;) {
    indices[n] = Candidate(wishes[n], i);
    i = steps[n][i].byFrom;
  }
  return indices;
}

}  // namespace heron
