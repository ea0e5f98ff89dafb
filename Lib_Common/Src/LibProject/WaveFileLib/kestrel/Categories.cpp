// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Categories.h"

#include <algorithm>
#include <cstddef>

#include "kestrel/TablesQuantiser.h"

namespace kestrel {
namespace {

constexpr int kBalances = kControlValues - 1;

int ExpectedBits(int nCategory) { return kExpectedBits[Index(RealCategory(nCategory))]; }

// One way to give categories to the regions of a frame.
struct S_Assignment {
  S_Categories categories{};
  int nBits = 0;

  void Change(int nRegion, int nSteps) {
    int& nCategory = categories[Index(nRegion)];
    nBits -= ExpectedBits(nCategory);
    nCategory += nSteps;
    nBits += ExpectedBits(nCategory);
  }
};

class C_Categoriser {
 public:
  C_Categoriser(int nBits, const S_Envelope& envelope, int nRegions)
      : m_nBits(nBits), m_envelope(envelope), m_nRegions(nRegions), m_nOffset(FindOffset()) {
    m_rich = m_poor = Assign(m_nOffset);
  }

  S_Categorisation Run() {
    for (int n = 0; n < kBalances; ++n) {
      if (m_rich.nBits + m_poor.nBits <= 2 * m_nBits) {
        Refine();
      } else {
        Coarsen();
      }
    }
    S_Categorisation result{.categories = m_rich.categories, .balances = {}};
    std::copy_n(m_balances.begin() + m_nFront, kBalances, result.balances.begin());
    return result;
  }

 private:
  // The category falls by one for every two steps that the power rises.
  S_Assignment Assign(int nOffset) const {
    S_Assignment assignment;
    for (int r = 0; r < m_nRegions; ++r) {
      const int nCategory = RealCategory((nOffset - m_envelope[Index(r)]) >> 1);
      assignment.categories[Index(r)] = nCategory;
      assignment.nBits += ExpectedBits(nCategory);
    }
    return assignment;
  }

  // The largest offset that still spends at least m_nBits - kOffsetMargin bits, found by binary
  // search.
  int FindOffset() const {
    int nOffset = -32;
    for (int nStep = 32; nStep > 0; nStep /= 2) {
      if (Assign(nOffset + nStep).nBits >= m_nBits - kOffsetMargin) nOffset += nStep;
    }
    return nOffset;
  }

  // By how much a region is coded finer than its power asks for; negative when it is coarser.
  int Excess(const S_Assignment& assignment, int nRegion) const {
    return m_nOffset - m_envelope[Index(nRegion)] - 2 * assignment.categories[Index(nRegion)];
  }

  // The bounds 99 and -99 matter only for damaged frames: a region whose excess is beyond them is
  // not a candidate, and without a candidate the last choice is used again.
  void Refine() {
    int nBest = 99;
    for (int r = 0; r < m_nRegions; ++r) {
      const int nExcess = Excess(m_rich, r);
      if (m_rich.categories[Index(r)] <= 0 || nExcess >= nBest) continue;
      nBest = nExcess;
      m_nRefined = r;
    }
    m_balances[Index(--m_nFront)] = m_nRefined;
    m_rich.Change(m_nRefined, -1);
  }

  void Coarsen() {
    int nBest = -99;
    for (int r = m_nRegions - 1; r >= 0; --r) {
      const int nExcess = Excess(m_poor, r);
      if (m_poor.categories[Index(r)] >= kNoiseCategory || nExcess <= nBest) continue;
      nBest = nExcess;
      m_nCoarsened = r;
    }
    m_balances[Index(m_nBack++)] = m_nCoarsened;
    m_poor.Change(m_nCoarsened, 1);
  }

  int m_nBits;
  const S_Envelope& m_envelope;
  int m_nRegions;
  int m_nOffset;
  S_Assignment m_rich;
  S_Assignment m_poor;
  // Refinements are stored from the middle towards the front, coarsenings from the middle towards
  // the back.
  std::array<int, kBalances + kBalances> m_balances{};
  int m_nFront = kBalances;
  int m_nBack = kBalances;
  int m_nRefined = 0;
  int m_nCoarsened = 0;
};

}  // namespace

int RealCategory(int nCategory) noexcept { return std::clamp(nCategory, 0, kNoiseCategory); }

S_Categorisation Categorise(int nAvailableBits, const S_Envelope& envelope, int nRegions) noexcept {
  return C_Categoriser(CountedBits(nAvailableBits), envelope, nRegions).Run();
}

void ApplyBalances(S_Categorisation& categorisation, int nControl) noexcept {
  for (int n = 0; n < nControl; ++n) {
    ++categorisation.categories[Index(categorisation.balances[Index(n)])];
  }
}

}  // namespace kestrel
