// SPDX-License-Identifier: Apache-2.0
#include "heron/RateControl.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "heron/Configuration.h"
#include "heron/Loudness.h"

namespace heron {
namespace {

// After so many passes, the interval is halved.
constexpr std::size_t kNewtonPasses = 8;

// The first offset: a plane through the offsets that the search found for recorded telephone speech
// at 8 kHz. It misses them by about half an octave of step size. Only the number of passes depends
// on it.
constexpr int kFirstOffsetBase = 1600;
constexpr int kFirstOffsetPerBit = -1147;  // for each bit per sample
// For each four units of the mean loudness.
constexpr int kFirstOffsetPerFourLoudness = 3;

// Fractions of the allowed size, as their reciprocals. They are a compromise: a smaller share of
// unused bytes would cost more passes than it is worth.
constexpr std::int64_t kUnusedAtFirst = 512;  // may stay unused
constexpr std::int64_t kUnusedLater = 200;    // may stay unused once the interval is halved
constexpr std::int64_t kAimedBelow = 1024;    // aimed at, so that a step that misses a little fits

// Sounds of so few sections are tried at every coarseness.
constexpr std::int64_t kFewSections = 4;

// The mean loudness of the frames; there is at least one sample.
int MeanLoudness(std::span<const std::int16_t> samples, std::size_t nLength) {
  std::int64_t nTotal = 0;
  const std::size_t nFrames = 1 + (samples.size() - 1) / nLength;
  for (std::size_t nAt = 0; nAt < samples.size(); nAt += nLength) {
    const auto frame = samples.subspan(nAt, std::min(nLength, samples.size() - nAt));
    std::uint64_t qwSquares = 0;
    for (const int nSample : frame) qwSquares += static_cast<std::uint64_t>(nSample * nSample);
    nTotal += Loudness(qwSquares, frame.size());
  }
  return static_cast<int>(nTotal / static_cast<std::int64_t>(nFrames));
}

// The offset at which speech usually ends up. Any value will do, but a good guess saves passes.
int FirstOffset(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth) {
  const int nLoudness = MeanLoudness(samples, static_cast<std::size_t>(FrameLength(nSampleRate)));
  return kFirstOffsetBase + nLoudness * kFirstOffsetPerFourLoudness / 4 +
         kFirstOffsetPerBit * nBitDepth;
}

struct S_Pass {
  std::int64_t nCoarseness;
  std::int64_t nSize;
};

// Approaches the size in Newton's way: twice the step size saves about a bit for each coefficient
// that is not 0. Once it knows a coarseness that is too fine and one that is coarse enough, it
// stays between them, and halves what is left when it does not get close soon.
class C_Search {
 public:
  C_Search(const C_Encoder& encoder, std::uint64_t qwMost, int nFirstOffset)
      : m_nMost(static_cast<std::int64_t>(qwMost)),
        m_nStepsPerOctave(encoder.StepsPerOctave()),
        m_nFine(encoder.Finest() - 1),
        m_nCoarse(encoder.Coarsest() + 1),
        m_nNext(Limit(encoder.FromOffset(nFirstOffset))) {}

  // The coarseness to try next; without a meaning once IsDone().
  [[nodiscard]] std::int64_t Next() const { return m_nNext; }

  // Takes what it cost.
  void Learn(const S_RunCost& cost) { if (getenv("TR")) fprintf(stderr, "%lld/%lld oct: size %zu of %lld (%+.3f%%)\n", (long long)m_nNext, (long long)m_nStepsPerOctave, cost.nBytes, (long long)m_nMost, 100.0*((double)cost.nBytes-(double)m_nMost)/(double)m_nMost);
    const S_Pass pass{m_nNext, static_cast<std::int64_t>(cost.nBytes)};
    const bool bFits = pass.nSize <= m_nMost;
    (bFits ? m_nCoarse : m_nFine) = m_nNext;
    if (!m_bFits || (bFits && pass.nSize > m_best.nSize)) m_best = pass;
    m_bFits = m_bFits || bFits;
    ++m_nPasses;
    if (!IsClosed()) {
      m_nNext = m_nPasses < kNewtonPasses ? Limit(m_nNext + Step(pass, cost.nNonZero)) : Middle();
    }
  }

  // True when the best result is close enough or nothing is left to try.
  [[nodiscard]] bool IsDone() const {
    return IsWithin(m_nPasses < kNewtonPasses ? kUnusedAtFirst : kUnusedLater) || IsClosed();
  }
  // True when the best result fits and leaves at most this share of the size.
  [[nodiscard]] bool IsWithin(std::int64_t nShare) const {
    return m_bFits && m_nMost - m_best.nSize <= m_nMost / nShare;
  }
  [[nodiscard]] bool Fits() const { return m_bFits; }
  [[nodiscard]] std::int64_t Best() const { return m_best.nCoarseness; }
  [[nodiscard]] std::int64_t BestSize() const { return m_best.nSize; }

 private:
  // True when nothing is left between the two known ones.
  [[nodiscard]] bool IsClosed() const { return m_nFine + 1 >= m_nCoarse; }
  [[nodiscard]] std::int64_t Middle() const { return m_nFine + (m_nCoarse - m_nFine) / 2; }
  // The search must not be closed.
  [[nodiscard]] std::int64_t Limit(std::int64_t nCoarseness) const {
    return std::clamp(nCoarseness, m_nFine + 1, m_nCoarse - 1);
  }
  // From this pass to where the size is as aimed at.
  [[nodiscard]] std::int64_t Step(const S_Pass& pass, std::size_t nNonZero) const {
    constexpr std::int64_t kBitsPerByte = 8;
    const std::int64_t nExcess = (pass.nSize - (m_nMost - m_nMost / kAimedBelow)) * kBitsPerByte;
    const auto nPerOctave = static_cast<std::int64_t>(nNonZero) + 1;
    // A step of several octaves would rest on too rough a guess.
    const std::int64_t nBits = std::clamp(nExcess, -2 * nPerOctave, 2 * nPerOctave);
    return nBits * m_nStepsPerOctave / nPerOctave;
  }

  std::int64_t m_nMost;
  std::int64_t m_nStepsPerOctave;
  std::int64_t m_nFine;    // too fine, or finer than makes sense
  std::int64_t m_nCoarse;  // coarse enough, or coarser than makes sense
  std::int64_t m_nNext;
  std::size_t m_nPasses = 0;
  S_Pass m_best{0, -1};
  bool m_bFits = false;
};

C_Search Search(C_Encoder& encoder, std::uint64_t qwMost, int nFirstOffset) {
  C_Search search(encoder, qwMost, nFirstOffset);
  while (!search.IsDone()) search.Learn(encoder.CostAt(search.Next()));
  return search;
}

// The sizes of short sounds jump up and down from step to step, so a finer coarseness than the
// search found may fit as well. Of all within an octave the one with the least error is taken.
std::int64_t BestOfAll(C_Encoder& encoder, std::uint64_t qwMost, std::int64_t nFound) {
  std::int64_t nBest = nFound;
  std::uint64_t qwLeast = encoder.CostAt(nFound).qwError;
  for (std::int64_t n = nFound - encoder.StepsPerOctave(); n < nFound; ++n) {
    const S_RunCost cost = encoder.CostAt(n);
    if (cost.nBytes > qwMost || cost.qwError >= qwLeast) continue;
    nBest = n;
    qwLeast = cost.qwError;
  }
  return nBest;
}

}  // namespace

std::uint64_t CodedRoom(std::size_t nSamples, int nBitDepth) noexcept {
  const std::uint64_t qwByDepth =
      std::uint64_t{nSamples} * static_cast<unsigned int>(nBitDepth) / 8;
  const std::uint64_t qwShort = kShortBytes + std::uint64_t{nSamples} * kShortBitsOf8 / 64;
  return std::max(qwByDepth, std::min<std::uint64_t>(qwShort, kMostShortBytes)) - kHeadBytes;
}

std::vector<std::uint8_t> EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate,
                                       int nBitDepth, const C_Encoder::S_Progress& fnProgress) {
  const std::uint64_t qwMost = CodedRoom(samples.size(), nBitDepth);
  const int nFirst = FirstOffset(samples, nSampleRate, nBitDepth);
  C_Encoder encoder(samples, nSampleRate, nBitDepth, nFirst, fnProgress);
  C_Search search = Search(encoder, qwMost, nFirst);
  if (getenv("FO")) fprintf(stderr, "FO %d %d %d %d\n", nBitDepth, nSampleRate, MeanLoudness(samples, (size_t)FrameLength(nSampleRate)), encoder.ToOffset(search.Best()));
  if (encoder.SectionCount() <= kFewSections) {
    return encoder.Encode(BestOfAll(encoder, qwMost, search.Best()));
  }
  if (search.IsWithin(kUnusedLater)) return encoder.Encode(search.Best());
  const int nFound = encoder.ToOffset(search.Best());
  C_Encoder whole = encoder;
  whole.UseWholeIndices();
  const C_Search second = Search(whole, qwMost, nFound);
  const bool bBetter = second.Fits() && (!search.Fits() || second.BestSize() > search.BestSize());
  return bBetter ? whole.Encode(second.Best()) : encoder.Encode(search.Best());
}

}  // namespace heron
