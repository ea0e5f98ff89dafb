// SPDX-License-Identifier: Apache-2.0
#include "heron/TrellisAvx2.h"

#if defined(__x86_64__)
#include <algorithm>
#include <cstdlib>

#include "LanesAvx2.h"
#include "heron/MagnitudeCode.h"
#include "heron/Neighbourhood.h"
#include "heron/TrellisCosts.h"

VCM_AVX2_BEGIN
namespace heron {
namespace {

using V = __m128i;
using S_Choices = std::array<std::uint32_t, kStates>;

VCM_LANES_INLINE V Fill(std::uint32_t n) { return _mm_set1_epi32(static_cast<int>(n)); }
VCM_LANES_INLINE bool IsZero(V a) { return _mm_testz_si128(a, a) != 0; }
VCM_LANES_INLINE V Times(V a, std::int32_t n) { return _mm_mullo_epi32(a, _mm_set1_epi32(n)); }
// a where the mask is 0, b where it is -1.
VCM_LANES_INLINE V Select(V a, V b, V mask) { return _mm_blendv_epi8(a, b, mask); }
// Lanes 0 and 2 of a, then those of b; and the other lanes.
VCM_LANES_INLINE V Lanes02(V a, V b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0x88));
}
VCM_LANES_INLINE V Lanes13(V a, V b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0xDD));
}
// By the state after the step: what the state before it had, when that is the first or the second
// of the two that lead here.
VCM_LANES_INLINE V Followed(V a, V second) { return Select(Lanes02(a, a), Lanes13(a, a), second); }
// The same when all levels are zero.
VCM_LANES_INLINE V FollowedByZero(V a) { return _mm_shuffle_epi32(a, 0xD8); }

struct S_Four {
  alignas(16) std::array<std::uint32_t, kStates> values;
};
VCM_LANES_INLINE S_Four Stored(V a) {
  S_Four four;
  _mm_store_si128(static_cast<V*>(static_cast<void*>(four.values.data())), a);
  return four;
}
VCM_LANES_INLINE V Loaded(const S_Four& four) {
  return _mm_load_si128(static_cast<const V*>(static_cast<const void*>(four.values.data())));
}

// C_NearBelow of four paths.
struct S_NearLanes {
  static constexpr std::size_t kModel = ModelOf<C_NearBelow>();
  V expectation;
  V n1;  // the magnitude before
  V n2;

  VCM_LANES_INLINE void Clear() { expectation = n1 = n2 = _mm_setzero_si128(); }
  VCM_LANES_INLINE void Follow(V second) {
    n1 = Followed(n1, second);
    n2 = Followed(n2, second);
  }
  VCM_LANES_INLINE void FollowZero() {
    n1 = FollowedByZero(n1);
    n2 = FollowedByZero(n2);
    expectation = _mm_add_epi32(Times(n1, kWeightBelow2), Times(n2, kWeightBelow3));
    n2 = n1;
    n1 = _mm_setzero_si128();
  }
  VCM_LANES_INLINE void Append(V magnitude) {
    expectation = _mm_add_epi32(Times(magnitude, kWeightBelow1),
                                _mm_add_epi32(Times(n1, kWeightBelow2), Times(n2, kWeightBelow3)));
    n2 = n1;
    n1 = magnitude;
  }
};

// C_SteadyBelow of four paths.
struct S_SteadyLanes {
  static constexpr std::size_t kModel = ModelOf<C_SteadyBelow>();
  V expectation;

  VCM_LANES_INLINE void Clear() { expectation = _mm_setzero_si128(); }
  VCM_LANES_INLINE void Follow(V second) { expectation = Followed(expectation, second); }
  VCM_LANES_INLINE void Fade() {
    expectation = _mm_sub_epi32(expectation, _mm_srli_epi32(Times(expectation, 3), 4));
  }
  VCM_LANES_INLINE void FollowZero() {
    expectation = FollowedByZero(expectation);
    Fade();
  }
  VCM_LANES_INLINE void Append(V magnitude) {
    Fade();
    expectation = _mm_add_epi32(
        expectation,
        _mm_srli_epi32(Times(magnitude, static_cast<std::int32_t>(kWeightAverageBelow) * 3 / 8),
                       1));
  }
};

// The tables and the shifts of four expectations.
struct S_Classes {
  V table;
  V shift;
};
VCM_LANES_INLINE S_Classes ClassesOf(V expectations) {
  constexpr int kFloatExponent = 127;
  // As a float, an expectation has its octave and the two bits after its first bit on top.
  const V top = _mm_srli_epi32(_mm_castps_si128(_mm_cvtepi32_ps(expectations)), 21);
  const V table = _mm_sub_epi32(top, _mm_set1_epi32(4 * (kFloatExponent + kLowestOctave)));
  const V high = _mm_srli_epi32(expectations, kHighestOctave);
  if (IsZero(high)) return {table, _mm_setzero_si128()};
  if (!IsZero(_mm_srli_epi32(expectations, 24))) [[unlikely]] {
    // A float would round it.
    const S_Four four = Stored(expectations);
    S_Four tables;
    S_Four shifts;
    for (std::size_t n = 0; n < kStates; ++n) {
      const S_MagnitudeClass one = ClassOf(four.values[n]);
      tables.values[n] = static_cast<std::uint32_t>(one.nTable);
      shifts.values[n] = static_cast<std::uint32_t>(one.nShift);
    }
    return {Loaded(tables), Loaded(shifts)};
  }
  const V octave = _mm_srli_epi32(table, 2);
  const V shift =
      _mm_max_epi32(_mm_sub_epi32(octave, _mm_set1_epi32(kHighestOctave - kLowestOctave - 1)),
                    _mm_setzero_si128());
  const V last = _mm_or_si128(_mm_and_si128(table, _mm_set1_epi32(3)),
                              _mm_set1_epi32(static_cast<int>(kMagnitudeTables) - 4));
  return {_mm_min_epi32(table, last), shift};
}

// The levels around a coefficient as the quantisers of the four states see them (TrellisCosts.h).
struct S_LevelPairs {
  V even;
  V odd;
  V evenError;
  V oddError;
  V zeroToo;
};
VCM_LANES_INLINE S_LevelPairs LevelPairsAround(V scaled) {
  constexpr int kStep = 2 << kScaledQ;
  const V half = _mm_setr_epi32(0, 0, kStep / 2, kStep / 2);
  const V place = _mm_add_epi32(scaled, half);
  const V lower = _mm_srli_epi32(place, kScaledQ + 1);
  const V rest = _mm_and_si128(place, _mm_set1_epi32(kStep - 1));
  const V below =
      _mm_sub_epi32(rest, _mm_and_si128(_mm_cmpeq_epi32(lower, _mm_setzero_si128()), half));
  const V above = _mm_sub_epi32(_mm_set1_epi32(kStep), rest);
  const V lowerError = _mm_mullo_epi32(below, below);
  const V upperError = _mm_mullo_epi32(above, above);
  const V one = _mm_set1_epi32(1);
  const V isOdd = _mm_cmpeq_epi32(_mm_and_si128(lower, one), one);
  return {_mm_sub_epi32(lower, isOdd), _mm_or_si128(lower, one),
          Select(lowerError, upperError, isOdd), Select(upperError, lowerError, isOdd),
          _mm_cmpeq_epi32(lower, one)};
}

// The prices of the symbols of four states.
class C_PriceLanes {
 public:
  VCM_LANES_INLINE C_PriceLanes(const int* pPrices, const S_Classes& classes)
      : m_pPrices(pPrices),
        m_row(_mm_add_epi32(_mm_slli_epi32(classes.table, 5), _mm_setr_epi32(0, 0, 16, 16))),
        m_shift(classes.shift) {
    static_assert(kQuantisers * kMagnitudeSymbols == 32);
  }

  VCM_LANES_INLINE V OfZero() const {
    return _mm_add_epi32(_mm_i32gather_epi32(m_pPrices, m_row, 4), ShiftPrice());
  }
  VCM_LANES_INLINE V Of(V level) const {
    const V symbol = _mm_srlv_epi32(level, m_shift);
    const V least = _mm_cmpgt_epi32(symbol, _mm_set1_epi32(kEscapeSymbol - 1));
    if (!IsZero(least)) return WithEscapes(level, symbol);
    const V price = _mm_i32gather_epi32(m_pPrices, _mm_add_epi32(m_row, symbol), 4);
    return _mm_add_epi32(_mm_add_epi32(price, ShiftPrice()), SignPrice(level));
  }

 private:
  VCM_LANES_INLINE V ShiftPrice() const { return Times(m_shift, kBitPrice); }
  VCM_LANES_INLINE static V SignPrice(V level) {
    return _mm_andnot_si128(_mm_cmpeq_epi32(level, _mm_setzero_si128()), Fill(kBitPrice));
  }
  VCM_LANES_INLINE V WithEscapes(V level, V symbol) const {
    S_Four escapes = Stored(symbol);
    for (std::uint32_t& n : escapes.values) {
      n = n < kEscapeSymbol ? 0 : static_cast<std::uint32_t>(EscapeBits(n - kEscapeSymbol + 1));
    }
    const V limited = _mm_min_epu32(symbol, Fill(kEscapeSymbol));
    const V price = _mm_i32gather_epi32(m_pPrices, _mm_add_epi32(m_row, limited), 4);
    return _mm_add_epi32(_mm_add_epi32(price, Times(Loaded(escapes), kBitPrice)),
                         _mm_add_epi32(ShiftPrice(), SignPrice(level)));
  }

  const int* m_pPrices;
  V m_row;
  V m_shift;
};

template <typename T_Below>
struct S_States {
  V cost;
  T_Below below;
};

template <typename T_Below>
VCM_LANES_INLINE void Extend(S_States<T_Below>& states, V scaled, const C_PriceLanes& prices,
                             S_Choices* pChoices) {
  S_LevelPairs levels = LevelPairsAround(scaled);
  V even = _mm_add_epi32(_mm_add_epi32(states.cost, levels.evenError), prices.Of(levels.even));
  const V odd = _mm_add_epi32(_mm_add_epi32(states.cost, levels.oddError), prices.Of(levels.odd));
  if (!IsZero(levels.zeroToo)) {
    const V zero =
        _mm_add_epi32(_mm_add_epi32(states.cost, _mm_mullo_epi32(scaled, scaled)), prices.OfZero());
    const V better = _mm_and_si128(_mm_cmpgt_epi32(even, zero), levels.zeroToo);
    even = Select(even, zero, better);
    levels.even = _mm_andnot_si128(better, levels.even);
  }
  const V first = Lanes02(even, odd);
  const V other = Lanes13(odd, even);
  const V second = _mm_cmpgt_epi32(first, other);
  states.cost = _mm_min_epi32(first, other);
  const V level =
      Select(Lanes02(levels.even, levels.odd), Lanes13(levels.odd, levels.even), second);
  const V firstState = _mm_setr_epi32(0, 2, 0, 2);
  _mm_storeu_si128(static_cast<V*>(static_cast<void*>(pChoices->data())),
                   _mm_sub_epi32(_mm_or_si128(_mm_slli_epi32(level, 2), firstState), second));
  const V quantiser = _mm_setr_epi32(0, 1, 0, 1);
  states.below.Follow(second);
  states.below.Append(
      _mm_max_epi32(_mm_sub_epi32(_mm_add_epi32(level, level), quantiser), _mm_setzero_si128()));
}

template <typename T_Below>
VCM_LANES_INLINE void ExtendByZero(S_States<T_Below>& states, V scaled, const C_PriceLanes& prices,
                                   S_Choices* pChoices) {
  *pChoices = {0, 2, 1, 3};
  states.cost = FollowedByZero(
      _mm_add_epi32(_mm_add_epi32(states.cost, _mm_mullo_epi32(scaled, scaled)), prices.OfZero()));
  states.below.FollowZero();
}

template <typename T_Below>
VCM_LANES_INLINE std::size_t SearchBy(std::span<const std::int32_t> coefficients,
                                      const C_ToHalfSteps& toHalfSteps,
                                      const std::uint32_t* pExpectations, S_Choices* pChoices) {
  const auto* const pPrices =
      static_cast<const int*>(static_cast<const void*>(&kMagnitudePrices[T_Below::kModel]));
  S_States<T_Below> states;
  const auto nUnreachable = static_cast<int>(kUnreachable);
  states.cost = _mm_setr_epi32(0, nUnreachable, nUnreachable, nUnreachable);
  static_assert(kFirstState == 0);
  states.below.Clear();
  std::size_t nLeft = kCostPeriod;
  for (const std::int32_t nCoefficient : coefficients) {
    const auto nScaled = static_cast<std::uint32_t>(toHalfSteps(std::abs(nCoefficient)));
    const V expectation = _mm_add_epi32(Fill(*pExpectations++), states.below.expectation);
    const C_PriceLanes prices(pPrices, ClassesOf(expectation));
    if (nScaled < kLeastForALevel) {
      ExtendByZero(states, Fill(nScaled), prices, pChoices++);
    } else {
      Extend(states, Fill(nScaled), prices, pChoices++);
    }
    if (--nLeft == 0) {
      nLeft = kCostPeriod;
      V least = _mm_min_epi32(states.cost, _mm_shuffle_epi32(states.cost, 0x4E));
      least = _mm_min_epi32(least, _mm_shuffle_epi32(least, 0xB1));
      states.cost = _mm_min_epi32(_mm_sub_epi32(states.cost, least), Fill(kUnreachable));
    }
  }
  const S_Four costs = Stored(states.cost);
  return static_cast<std::size_t>(std::ranges::min_element(costs.values) - costs.values.begin());
}

}  // namespace

std::size_t SearchNearAvx2(std::span<const std::int32_t> coefficients, C_ToHalfSteps toHalfSteps,
                           const std::uint32_t* pExpectations, S_Choices* pChoices) noexcept {
  return SearchBy<S_NearLanes>(coefficients, toHalfSteps, pExpectations, pChoices);
}
std::size_t SearchSteadyAvx2(std::span<const std::int32_t> coefficients, C_ToHalfSteps toHalfSteps,
                             const std::uint32_t* pExpectations, S_Choices* pChoices) noexcept {
  return SearchBy<S_SteadyLanes>(coefficients, toHalfSteps, pExpectations, pChoices);
}

}  // namespace heron
VCM_AVX2_END
#endif
