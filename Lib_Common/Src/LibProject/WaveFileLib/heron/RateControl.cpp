// SPDX-License-Identifier: Apache-2.0
#include "heron/RateControl.h"

#include <algorithm>
#include <utility>

#include "heron/Configuration.h"
#include "heron/Loudness.h"

namespace heron {
namespace {

// Passes that use secants. Short sounds get more of them: they are cheap to code, and their sizes
// jump.
constexpr std::size_t kSecantPasses = 5;
constexpr std::size_t kSamplesForMorePasses = 16000;

// The first offset: a plane through the offsets that the search found for recorded telephone speech
// at 8 kHz. It misses them by about half an octave of step size. Only the number of passes depends
// on it.
constexpr int kFirstOffsetBase = 1600;
constexpr int kFirstOffsetPerBit = -1147;  // for each bit per sample
// For each four units of the mean loudness.
constexpr int kFirstOffsetPerFourLoudness = 3;

// Fractions of the allowed size, as their reciprocals. They are a compromise: a smaller share of
// unused bytes would cost more passes than it is worth.
constexpr std::int64_t kUnusedAfterSecants = 512;  // may stay unused while secants are left
constexpr std::int64_t kUnusedAfterHalving = 200;  // may stay unused after that
constexpr std::int64_t kAimedBelow =
    1536;  // aimed at, so that a secant which misses a little still fits

constexpr std::int64_t kBitsPerByte = 8;

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
  int nOffset;
  std::int64_t nSize;
};

// Approaches the size with secants, between an offset known to be too fine and one known to be
// coarse enough. If the secants do not get close, it halves that interval instead.
class C_Search {
 public:
  C_Search(std::uint64_t qwMost, std::size_t nSamples, int nFirstOffset)
      : m_nMost(static_cast<std::int64_t>(qwMost)),
        m_nSamples(static_cast<std::int64_t>(nSamples)),
        m_nSecantsLeft(kSecantPasses + kSamplesForMorePasses / nSamples),
        m_nOffset(Limit(nFirstOffset)) {}

  // The offset to try next; without a meaning once IsDone().
  [[nodiscard]] int Offset() const { return m_nOffset; }

  // Takes the coded audio that this offset gave.
  void Learn(std::vector<std::uint8_t> coded) {
    const S_Pass pass{m_nOffset, static_cast<std::int64_t>(coded.size())};
    const bool bFits = pass.nSize <= m_nMost;
    (bFits ? m_nCoarse : m_nFine) = m_nOffset;
    if (!m_bFits || (bFits && coded.size() > m_best.size())) m_best = std::move(coded);
    m_bFits = m_bFits || bFits;
    if (m_nSecantsLeft > 0) --m_nSecantsLeft;
    if (!IsClosed()) {
      m_nOffset = m_nSecantsLeft > 0 ? Limit(m_nOffset + Step(pass)) : (m_nFine + m_nCoarse) / 2;
    }
    m_last = pass;
  }

  // True when the best result is close enough or nothing is left to try.
  [[nodiscard]] bool IsDone() const {
    const std::int64_t nUnused = m_nMost - static_cast<std::int64_t>(m_best.size());
    const std::int64_t nShare = m_nSecantsLeft > 0 ? kUnusedAfterSecants : kUnusedAfterHalving;
    const bool bClose = m_bFits && nUnused <= m_nMost / nShare;
    return bClose || IsClosed();
  }
  std::vector<std::uint8_t> TakeBest() { return std::move(m_best); }

 private:
  // True when no offset is left between the two known ones.
  [[nodiscard]] bool IsClosed() const { return m_nFine + 1 >= m_nCoarse; }
  // The search must not be closed.
  [[nodiscard]] int Limit(std::int64_t nOffset) const {
    return static_cast<int>(std::clamp<std::int64_t>(nOffset, m_nFine + 1, m_nCoarse - 1));
  }

  // The change of offset from this pass to where a line through the last two passes meets the
  // target size. After the first pass, an octave of the step size is assumed to be worth one bit
  // per sample.
  [[nodiscard]] std::int64_t Step(const S_Pass& pass) const {
    const std::int64_t nExcess = pass.nSize - (m_nMost - m_nMost / kAimedBelow);
    if (m_last.nSize != kNone && m_last.nSize != pass.nSize) {
      return nExcess * (pass.nOffset - m_last.nOffset) / (m_last.nSize - pass.nSize);
    }
    return nExcess * kBitsPerByte * C_Encoder::kOffsetsPerOctave / m_nSamples;
  }

  static constexpr std::int64_t kNone = -1;

  std::int64_t m_nMost;
  std::int64_t m_nSamples;
  std::size_t m_nSecantsLeft;
  int m_nFine = C_Encoder::kFinestOffset - 1;      // too fine, or finer than makes sense
  int m_nCoarse = C_Encoder::kCoarsestOffset + 1;  // coarse enough, or coarser than makes sense
  int m_nOffset;
  S_Pass m_last{0, kNone};
  bool m_bFits = false;
  std::vector<std::uint8_t> m_best;
};

}  // namespace

std::vector<std::uint8_t> EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate,
                                       int nBitDepth, const C_Encoder::S_Progress& fnProgress) {
  const std::uint64_t qwMost =
      std::uint64_t{samples.size()} * static_cast<unsigned int>(nBitDepth) / 8;
  const C_Encoder encoder(samples, nSampleRate);
  C_Search search(qwMost > kHeadBytes ? qwMost - kHeadBytes : 0, samples.size(),
                  FirstOffset(samples, nSampleRate, nBitDepth));
  // The first pass reports all frames except the last one, which is reported when the last pass is
  // done.
  C_Encoder::S_Progress fnFirstPass = [&](unsigned int nFramesDone) {
    if (fnProgress && nFramesDone < encoder.FrameCount()) fnProgress(nFramesDone);
  };
  for (; !search.IsDone(); fnFirstPass = {}) {
    search.Learn(encoder.Encode(search.Offset(), fnFirstPass));
  }
  if (fnProgress) fnProgress(static_cast<unsigned int>(encoder.FrameCount()));
  return search.TakeBest();
}

}  // namespace heron
