// SPDX-License-Identifier: Apache-2.0
#include "heron/RateControl.h"

#include <algorithm>
#include <utility>

#include "heron/Configuration.h"
#include "heron/Loudness.h"

namespace heron {
namespace {

constexpr int kMostPasses = 8;

// The mean loudness of the frames.
int MeanLoudness(std::span<const std::int16_t> samples, std::size_t nLength) {
  std::int64_t nTotal = 0;
  std::int64_t nFrames = 0;
  for (std::size_t nAt = 0; nAt < samples.size(); nAt += nLength) {
    const auto frame = samples.subspan(nAt, std::min(nLength, samples.size() - nAt));
    std::uint64_t qwSquares = 0;
    for (const int nSample : frame) qwSquares += static_cast<std::uint64_t>(nSample * nSample);
    nTotal += Loudness(qwSquares, frame.size());
    ++nFrames;
  }
  return static_cast<int>(nTotal / nFrames);
}

// Where speech usually ends up; anything will do, a good guess saves passes.
int FirstOffset(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth) {
  const int nLoudness = MeanLoudness(samples, static_cast<std::size_t>(FrameLength(nSampleRate)));
  return 922 + nLoudness * 3 / 4 - 1147 * nBitDepth;
}

// The offsets that are known to be too fine and coarse enough, and the sizes that they gave.
class C_Search {
 public:
  explicit C_Search(std::size_t nMost) : m_nMost(static_cast<std::int64_t>(nMost)) {}

  // Takes the result of one pass.
  void Learn(int nOffset, std::vector<std::uint8_t> coded) {
    const auto nSize = static_cast<std::int64_t>(coded.size());
    if (nSize > m_nMost) {
      m_fine = {nOffset, nSize};
      m_bFineKnown = true;
      if (!m_bCoarseKnown) m_best = std::move(coded);
      return;
    }
    m_coarse = {nOffset, nSize};
    if (!m_bCoarseKnown || coded.size() >= m_best.size()) m_best = std::move(coded);
    m_bCoarseKnown = true;
  }

  [[nodiscard]] bool IsDone() const {
    if (!m_bCoarseKnown) return m_bFineKnown && m_fine.nOffset >= C_Encoder::kCoarsestOffset;
    const auto nBest = static_cast<std::int64_t>(m_best.size());
    if (m_nMost - nBest <= m_nMost / 1024) return true;
    return m_coarse.nOffset <= (m_bFineKnown ? m_fine.nOffset + 1 : C_Encoder::kFinestOffset);
  }

  // The next offset to try. Between two known ones the size is taken as linear; beyond one, an
  // octave of the step as a bit per sample.
  [[nodiscard]] int Next(std::size_t nSamples) const {
    const std::int64_t nAim = m_nMost - m_nMost / 2048;
    if (m_bFineKnown && m_bCoarseKnown) {
      const std::int64_t nSpan = m_coarse.nOffset - m_fine.nOffset;
      const std::int64_t nStep = nSpan * (m_fine.nSize - nAim) / (m_fine.nSize - m_coarse.nSize);
      return m_fine.nOffset + static_cast<int>(std::clamp<std::int64_t>(nStep, 1, nSpan - 1));
    }
    const S_Point& known = m_bFineKnown ? m_fine : m_coarse;
    const std::int64_t nStep =
        (known.nSize - nAim) * 8 * 1024 / static_cast<std::int64_t>(nSamples) +
        (m_bFineKnown ? 8 : -8);
    return static_cast<int>(std::clamp<std::int64_t>(
        known.nOffset + nStep, C_Encoder::kFinestOffset, C_Encoder::kCoarsestOffset));
  }

  [[nodiscard]] bool Fits() const { return m_bCoarseKnown; }
  std::vector<std::uint8_t> TakeBest() { return std::move(m_best); }

 private:
  struct S_Point {
    int nOffset = 0;
    std::int64_t nSize = 0;
  };

  std::int64_t m_nMost;
  S_Point m_fine;
  S_Point m_coarse;
  bool m_bFineKnown = false;
  bool m_bCoarseKnown = false;
  std::vector<std::uint8_t> m_best;
};

}  // namespace

std::vector<std::uint8_t> EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate,
                                       int nBitDepth, const C_Encoder::S_Progress& fnProgress) {
  const std::size_t nMost = samples.size() * static_cast<std::size_t>(nBitDepth) / 8;
  const C_Encoder encoder(samples, nSampleRate);
  C_Search search(nMost > kHeadBytes ? nMost - kHeadBytes : 0);
  int nOffset = FirstOffset(samples, nSampleRate, nBitDepth);
  for (int nPass = 1; !search.IsDone(); ++nPass) {
    if (nPass > kMostPasses && search.Fits()) break;
    search.Learn(nOffset, encoder.Encode(nOffset, fnProgress));
    nOffset = search.Next(samples.size());
  }
  return search.TakeBest();
}

}  // namespace heron
