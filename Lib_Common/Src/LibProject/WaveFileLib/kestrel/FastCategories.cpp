// SPDX-License-Identifier: Apache-2.0
#include "kestrel/FastCategories.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kestrel/TablesQuantiser.h"

namespace kestrel {
namespace {

constexpr int kBalances = kControlValues - 1;
constexpr int kPowers = kHighestPower - kLowestPower + 1;

// ---- the offset ----

// The search looks at the offsets -31..31, in groups of eight from -32 on. More of an offset means
// fewer bits, so the result is -32 plus the number of offsets that spend enough.
constexpr int kLowestOffset = -32;
constexpr std::size_t kGroup = 8;

// The bits of eight offsets at once.
using S_GroupBits = std::array<std::int16_t, kGroup>;

constexpr int BitsAt(int nOffset, int nPower) {
  return kExpectedBits[Index(std::clamp((nOffset - nPower) >> 1, 0, kNoiseCategory))];
}

// By power: the bits of a region at the first offset of each group.
constexpr auto MakeGroupStarts() {
  std::array<S_GroupBits, kPowers> table{};
  for (int n = 0; n < kPowers; ++n) {
    for (std::size_t i = 0; i < kGroup; ++i) {
      table[Index(n)][i] = static_cast<std::int16_t>(
          BitsAt(kLowestOffset + static_cast<int>(i * kGroup), n + kLowestPower));
    }
  }
  return table;
}
alignas(16) constexpr auto kGroupStarts = MakeGroupStarts();

// By the distance of an offset from the power of a region, from the lowest on: the bits of the
// region.
constexpr int kLowestDistance = kLowestOffset - kHighestPower;
constexpr std::size_t kDistances = Index(31 - kLowestPower - kLowestDistance) + 1;
constexpr auto MakeBitsOfDistance() {
  std::array<std::int16_t, kDistances> table{};
  for (std::size_t n = 0; n < kDistances; ++n) {
    table[n] = static_cast<std::int16_t>(BitsAt(kLowestDistance + static_cast<int>(n), 0));
  }
  return table;
}
constexpr auto kBitsOfDistance = MakeBitsOfDistance();

// The bits of all regions at eight offsets. rowOf(power): those of one region. Four numbers are
// added at once; none of their sums needs more than 16 bits.
template <typename RowOf>
S_GroupBits AddUp(const S_Envelope& envelope, int nRegions, RowOf rowOf) {
  static_assert(kMaxRegions * kExpectedBits[0] <= 0x7FFF);
  std::uint64_t qwLow = 0;
  std::uint64_t qwHigh = 0;
  for (std::size_t r = 0; r < Index(nRegions); ++r) {
    const std::int16_t* pRow = rowOf(envelope[r]);
    std::uint64_t qwRow;
    std::memcpy(&qwRow, pRow, sizeof qwRow);
    qwLow += qwRow;
    std::memcpy(&qwRow, pRow + kGroup / 2, sizeof qwRow);
    qwHigh += qwRow;
  }
  S_GroupBits bits;
  std::memcpy(bits.data(), &qwLow, sizeof qwLow);
  std::memcpy(bits.data() + kGroup / 2, &qwHigh, sizeof qwHigh);
  return bits;
}

// The last of eight offsets that spends at least nLeast bits, or the first if none does.
std::size_t LastEnough(const S_GroupBits& bits, int nLeast) {
  std::int16_t nEnough = 0;
  for (const std::int16_t nBits : bits) {
    nEnough = static_cast<std::int16_t>(nEnough + (nBits >= nLeast ? 1 : 0));
  }
  return Index(std::max(nEnough - 1, 0));
}

struct S_Offset {
  int nOffset;
  int nBits;  // that all regions spend there
};
S_Offset FindOffset(const S_Envelope& envelope, int nRegions, int nLeast) {
  const S_GroupBits starts = AddUp(envelope, nRegions, [](int nPower) {
    return kGroupStarts[Index(nPower - kLowestPower)].data();
  });
  const int nFirst = kLowestOffset + static_cast<int>(LastEnough(starts, nLeast) * kGroup);
  const S_GroupBits bits = AddUp(envelope, nRegions, [=](int nPower) {
    return kBitsOfDistance.data() + (nFirst - nPower - kLowestDistance);
  });
  const std::size_t nLast = LastEnough(bits, nLeast);
  return {nFirst + static_cast<int>(nLast), bits[nLast]};
}

// ---- the order of the choices ----

// By how much a region can be coded finer than its power asks for, or coarser, at most: what the
// offset gives, and two more for each choice.
constexpr int kMostFiner = 31 - kLowestPower - 2 * kNoiseCategory + 2 * kBalances;
constexpr int kMostCoarser = kHighestPower - kLowestOffset + 2 * kBalances;

using S_RegionSet = std::uint16_t;  // bit r for region r

// The regions that can be changed, by excess. The best excess never comes back: a choice moves its
// region on by two.
template <std::size_t nExcesses>
class C_Candidates {
 public:
  void Insert(int nExcess, unsigned int nRegionBit) {
    auto& set = m_sets[Index(nExcess)];
    set = static_cast<S_RegionSet>(set | nRegionBit);
  }
  // The set of the regions that come next; empty when there is none.
  S_RegionSet& Best() {
    while (m_sets[m_nBest] == 0 && m_nBest < nExcesses) ++m_nBest;
    return m_sets[m_nBest];
  }
  [[nodiscard]] int BestExcess() const { return static_cast<int>(m_nBest); }

 private:
  std::size_t m_nBest = 0;
  std::array<S_RegionSet, nExcesses + 1> m_sets{};  // the last one stays empty
};

// A category past the last costs as much as the last.
constexpr int kMostSteps = kBalances + 1;
constexpr auto MakeBitsOfCategory() {
  std::array<int, kMostSteps + kCategories + kMostSteps> bits{};
  for (std::size_t n = 0; n < bits.size(); ++n) {
    bits[n] = kExpectedBits[Index(std::clamp(static_cast<int>(n) - kMostSteps, 0, kNoiseCategory))];
  }
  return bits;
}
constexpr auto kBitsOfCategory = MakeBitsOfCategory();
int StepBits(int nFrom, int nTo) {
  return kBitsOfCategory[Index(nTo + kMostSteps)] - kBitsOfCategory[Index(nFrom + kMostSteps)];
}

class C_OrderedChoices {
 public:
  C_OrderedChoices(const S_Offset& offset, const S_Envelope& envelope, int nRegions)
      : m_nBits(2 * offset.nBits) {
    for (std::size_t r = 0; r < Index(nRegions); ++r) {
      const int nDistance = offset.nOffset - envelope[r];
      const int nCategory = std::clamp(nDistance >> 1, 0, kNoiseCategory);
      const int nExcess = nDistance - 2 * nCategory;
      m_rich[r] = nCategory;
      if (nCategory > 0) m_finer.Insert(nExcess, 1u << r);
      if (nCategory < kNoiseCategory) m_coarser.Insert(kMostCoarse - nExcess, 1u << r);
    }
    m_poor = m_rich;
  }

  // The bits of both assignments together.
  [[nodiscard]] int Bits() const { return m_nBits; }
  [[nodiscard]] const S_Categories& Rich() const { return m_rich; }

  // The region that is refined next: of those with the least excess, the first. Its excess grows by
  // two.
  int Refine() {
    S_RegionSet& set = m_finer.Best();
    if (set != 0) {
      m_nRefined = std::countr_zero(set);
      set = static_cast<S_RegionSet>(set & (set - 1));
      if (m_rich[Index(m_nRefined)] > 1) m_finer.Insert(m_finer.BestExcess() + 2, 1u << m_nRefined);
    }
    int& nCategory = m_rich[Index(m_nRefined)];
    m_nBits += StepBits(nCategory, nCategory - 1);
    --nCategory;
    return m_nRefined;
  }

  // The region that is coarsened next: of those with the greatest excess, the last. Its excess
  // falls by two.
  int Coarsen() {
    S_RegionSet& set = m_coarser.Best();
    if (set != 0) {
      m_nCoarsened = std::bit_width(set) - 1;
      set = static_cast<S_RegionSet>(set ^ 1u << m_nCoarsened);
      if (m_poor[Index(m_nCoarsened)] < kNoiseCategory - 1) {
        m_coarser.Insert(m_coarser.BestExcess() + 2, 1u << m_nCoarsened);
      }
    }
    int& nCategory = m_poor[Index(m_nCoarsened)];
    m_nBits += StepBits(nCategory, nCategory + 1);
    ++nCategory;
    return m_nCoarsened;
  }

 private:
  // Excesses of regions that can be coarsened start at 1.
  static constexpr int kMostCoarse = 1;

  S_Categories m_rich{};
  S_Categories m_poor;
  int m_nBits;
  int m_nRefined = 0;
  int m_nCoarsened = 0;
  C_Candidates<Index(kMostFiner) + 1> m_finer;
  C_Candidates<Index(kMostCoarser) + 2> m_coarser;
};

}  // namespace

S_Categorisation CategoriseValid(int nAvailableBits, const S_Envelope& envelope,
                                 int nRegions) noexcept {
  const int nBits = CountedBits(nAvailableBits);
  C_OrderedChoices choices(FindOffset(envelope, nRegions, nBits - kOffsetMargin), envelope,
                           nRegions);
  std::array<int, kBalances + kBalances> balances;
  std::size_t nFront = kBalances;
  std::size_t nBack = kBalances;
  for (int n = 0; n < kBalances; ++n) {
    if (choices.Bits() <= 2 * nBits) {
      balances[--nFront] = choices.Refine();
    } else {
      balances[nBack++] = choices.Coarsen();
    }
  }
  S_Categorisation result{.categories = choices.Rich(), .balances = {}};
  std::copy_n(balances.begin() + static_cast<std::ptrdiff_t>(nFront), kBalances,
              result.balances.begin());
  return result;
}

}  // namespace kestrel
