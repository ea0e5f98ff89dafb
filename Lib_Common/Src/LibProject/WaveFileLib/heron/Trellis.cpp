// SPDX-License-Identifier: Apache-2.0
#include "heron/Trellis.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "Processor.h"
#include "heron/MagnitudeCode.h"
#include "heron/StepSize.h"
#include "heron/TrellisAvx2.h"
#include "heron/TrellisCosts.h"

namespace heron {
namespace {

using S_Choices = std::array<std::uint32_t, kStates>;
using S_Expectations = std::array<std::uint32_t, kStates>;

// The best path that ends in a state. T_Below is C_NearBelow or C_SteadyBelow.
template <typename T_Below>
struct S_Path {
  std::uint32_t nCost;
  T_Below below;
};
template <typename T_Below>
using S_Paths = std::array<S_Path<T_Below>, kStates>;

// One step from a state with one of its levels.
struct S_Offer {
  std::uint32_t nCost;
  std::uint32_t nLevel;
};
struct S_Offers {
  S_Offer even;
  S_Offer odd;
};

// The prices of the levels as one quantiser sees them after one path.
template <std::size_t nModel, std::size_t nQuantiser>
class C_Prices {
 public:
  explicit C_Prices(std::uint32_t nExpectation)
      : m_class(ClassOf(nExpectation)),
        m_prices(kMagnitudePrices[nModel][m_class.nTable][nQuantiser]),
        m_nShiftPrice(static_cast<std::uint32_t>(m_class.nShift) * kBitPrice) {}

  [[nodiscard]] std::uint32_t OfZero() const { return m_prices[0] + m_nShiftPrice; }
  [[nodiscard]] std::uint32_t Of(std::uint32_t nLevel) const {
    const std::uint32_t nTop = nLevel >> m_class.nShift;
    const std::uint32_t nRaw = m_nShiftPrice + (nLevel != 0 ? kBitPrice : 0);
    if (nTop < kEscapeSymbol) return m_prices[nTop] + nRaw;
    return m_prices[kEscapeSymbol] + nRaw +
           static_cast<std::uint32_t>(EscapeBits(nTop - kEscapeSymbol + 1)) * kBitPrice;
  }

 private:
  S_MagnitudeClass m_class;
  const std::array<std::uint32_t, kMagnitudeSymbols>& m_prices;
  std::uint32_t m_nShiftPrice;
};

// From this size of a coefficient in half steps, Q8, its levels may need an escape. A level lies
// less than four half steps away.
constexpr std::uint32_t kLeastLarge = (2 * (kEscapeSymbol - 2)) << kScaledQ;

// The same prices for an expectation below the first shift and levels below the escape, as most
// are.
template <std::size_t nModel, std::size_t nQuantiser>
class C_SmallPrices {
 public:
  explicit C_SmallPrices(std::uint32_t nExpectation)
      : m_prices(kMagnitudePrices[nModel][kTableOf[nExpectation]][nQuantiser]) {}

  [[nodiscard]] std::uint32_t OfZero() const { return m_prices[0]; }
  [[nodiscard]] std::uint32_t Of(std::uint32_t nLevel) const {
    return m_prices[nLevel] + (nLevel != 0 ? kBitPrice : 0);
  }

 private:
  const std::array<std::uint32_t, kMagnitudeSymbols>& m_prices;
};

template <typename T_Prices, typename T_Below>
[[gnu::always_inline]] inline S_Offers OffersFrom(const S_Path<T_Below>& path,
                                                  std::uint32_t nExpectation, std::uint32_t nScaled,
                                                  const S_LevelPair& levels) {
  const T_Prices prices(nExpectation);
  S_Offers offers{{path.nCost + levels.nEvenError + prices.Of(levels.nEven), levels.nEven},
                  {path.nCost + levels.nOddError + prices.Of(levels.nOdd), levels.nOdd}};
  if (levels.bZeroToo) {
    const std::uint32_t nZero = path.nCost + nScaled * nScaled + prices.OfZero();
    if (nZero < offers.even.nCost) offers.even = {nZero, 0};
  }
  return offers;
}

// The better of two offers to a state.
template <std::size_t nQuantiser, std::size_t nFirst, std::size_t nSecond, typename T_Below>
S_Path<T_Below> Better(const S_Paths<T_Below>& paths, const S_Offer& first, const S_Offer& second,
                       std::uint32_t& nChoice) {
  const bool bSecond = second.nCost < first.nCost;
  const S_Offer& offer = bSecond ? second : first;
  const std::size_t nFrom = bSecond ? nSecond : nFirst;
  nChoice = offer.nLevel << 2 | static_cast<std::uint32_t>(nFrom);
  const auto nMagnitude = HalfSteps(nQuantiser, static_cast<std::int32_t>(offer.nLevel));
  return {offer.nCost, paths[nFrom].below.Then(nMagnitude)};
}

// T_Prices is C_Prices or C_SmallPrices.
template <template <std::size_t, std::size_t> typename T_Prices, typename T_Below>
[[gnu::always_inline]] inline void ExtendBy(S_Paths<T_Below>& paths, std::uint32_t nScaled,
                                            const S_Expectations& expectations,
                                            S_Choices& choices) {
  using T_Prices0 = T_Prices<ModelOf<T_Below>(), 0>;
  using T_Prices1 = T_Prices<ModelOf<T_Below>(), 1>;
  const S_LevelPair levels0 = LevelsAround<0>(nScaled);
  const S_LevelPair levels1 = LevelsAround<1>(nScaled);
  const S_Offers from0 = OffersFrom<T_Prices0>(paths[0], expectations[0], nScaled, levels0);
  const S_Offers from1 = OffersFrom<T_Prices0>(paths[1], expectations[1], nScaled, levels0);
  const S_Offers from2 = OffersFrom<T_Prices1>(paths[2], expectations[2], nScaled, levels1);
  const S_Offers from3 = OffersFrom<T_Prices1>(paths[3], expectations[3], nScaled, levels1);
  paths = {Better<0, 0, 1>(paths, from0.even, from1.odd, choices[0]),
           Better<1, 2, 3>(paths, from2.even, from3.odd, choices[1]),
           Better<0, 0, 1>(paths, from0.odd, from1.even, choices[2]),
           Better<1, 2, 3>(paths, from2.odd, from3.even, choices[3])};
}

template <typename T_Below>
void Extend(S_Paths<T_Below>& paths, std::uint32_t nScaled, std::uint32_t nExpectation,
            S_Choices& choices) {
  const S_Expectations expectations = {
      nExpectation + paths[0].below.Expectation(), nExpectation + paths[1].below.Expectation(),
      nExpectation + paths[2].below.Expectation(), nExpectation + paths[3].below.Expectation()};
  const std::uint32_t nAny = expectations[0] | expectations[1] | expectations[2] | expectations[3];
  if (nAny >> kHighestOctave == 0 && nScaled < kLeastLarge) {
    ExtendBy<C_SmallPrices>(paths, nScaled, expectations, choices);
  } else {
    ExtendBy<C_Prices>(paths, nScaled, expectations, choices);
  }
}

// The same when the level can only be zero.
template <typename T_Below>
void ExtendByZero(S_Paths<T_Below>& paths, std::uint32_t nScaled, std::uint32_t nExpectation,
                  S_Choices& choices) {
  constexpr std::size_t kModel = ModelOf<T_Below>();
  const auto extended = [&]<std::size_t nQuantiser>(const S_Path<T_Below>& path) {
    const C_Prices<kModel, nQuantiser> prices(nExpectation + path.below.Expectation());
    return S_Path<T_Below>{path.nCost + nScaled * nScaled + prices.OfZero(), path.below.Then(0)};
  };
  choices = {0, 2, 1, 3};
  paths = {extended.template operator()<0>(paths[0]), extended.template operator()<1>(paths[2]),
           extended.template operator()<0>(paths[1]), extended.template operator()<1>(paths[3])};
}

template <typename T_Below>
std::size_t BestOf(const S_Paths<T_Below>& paths) {
  const auto best = std::ranges::min_element(paths, {}, &S_Path<T_Below>::nCost);
  return static_cast<std::size_t>(best - paths.begin());
}

// Fills choices and returns the last state of the best path.
template <typename T_Below>
std::size_t SearchBy(std::span<const std::int32_t> coefficients, const C_ToHalfSteps& toHalfSteps,
                     const std::uint32_t* pExpectations, S_Choices* pChoices) {
  S_Paths<T_Below> paths;
  paths.fill({kUnreachable, {}});
  paths[kFirstState].nCost = 0;
  std::size_t nLeft = kCostPeriod;
  for (const std::int32_t nCoefficient : coefficients) {
    const auto nScaled = static_cast<std::uint32_t>(toHalfSteps(std::abs(nCoefficient)));
    if (nScaled < kLeastForALevel) {
      ExtendByZero(paths, nScaled, *pExpectations++, *pChoices++);
    } else {
      Extend(paths, nScaled, *pExpectations++, *pChoices++);
    }
    if (--nLeft == 0) {
      nLeft = kCostPeriod;
      const std::uint32_t nLeast = paths[BestOf(paths)].nCost;
      for (auto& path : paths) path.nCost = std::min(path.nCost - nLeast, kUnreachable);
    }
  }
  return BestOf(paths);
}

std::size_t LastState(bool bSteady, std::span<const std::int32_t> coefficients,
                      C_ToHalfSteps toHalfSteps, const std::uint32_t* pExpectations,
                      S_Choices* pChoices) {
#if defined(__x86_64__)
  if (vcm::UsableInstructions() == vcm::tagInstructions::kAvx2) {
    return bSteady ? SearchSteadyAvx2(coefficients, toHalfSteps, pExpectations, pChoices)
                   : SearchNearAvx2(coefficients, toHalfSteps, pExpectations, pChoices);
  }
#endif
  return bSteady ? SearchBy<C_SteadyBelow>(coefficients, toHalfSteps, pExpectations, pChoices)
                 : SearchBy<C_NearBelow>(coefficients, toHalfSteps, pExpectations, pChoices);
}

}  // namespace

C_Trellis::C_Trellis(std::size_t nLength) : m_choices(nLength) {}

void C_Trellis::Search(bool bSteady, std::span<const std::int32_t> coefficients, int nIndex,
                       const C_PartsBefore& before, std::span<std::int32_t> levels) noexcept {
  std::size_t nState = LastState(bSteady, coefficients, C_ToHalfSteps(nIndex),
                                 before.Expectations().data(), m_choices.data());
  for (std::size_t k = levels.size(); k-- > 0;) {
    const std::uint32_t nChoice = m_choices[k][nState];
    levels[k] = static_cast<std::int32_t>(nChoice >> 2);
    nState = nChoice & 3;
  }
}

}  // namespace heron
