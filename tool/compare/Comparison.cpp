// SPDX-License-Identifier: Apache-2.0
#include "compare/Comparison.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

constexpr double kMinSegment = -10.0;
constexpr double kMaxSegment = 35.0;
constexpr double kMinRms = 40.0 / 32768.0;
constexpr std::uint32_t kSegmentsPerSecond = 50;
constexpr std::size_t kPiece = 65536;  // samples

std::optional<double> Decibels(double dRatio) {
  if (dRatio <= 0.0 || !std::isfinite(dRatio)) return {};
  return 10 * std::log10(dRatio);
}

double Finite(double dSample) { return std::isfinite(dSample) ? dSample : 0.0; }

bool AreEqual(double dA, double dB) { return dA == dB || (std::isnan(dA) && std::isnan(dB)); }

// Collects the segments of a channel.
class C_Segments {
 public:
  explicit C_Segments(std::uint32_t dwRate) : m_dwLength(dwRate / kSegmentsPerSecond) {}

  void Add(double dSignal, double dNoise, S_Sums& sums) {
    if (m_dwLength == 0) return;
    m_dSignal += dSignal;
    m_dNoise += dNoise;
    if (++m_dwFilled < m_dwLength) return;
    if (m_dSignal >= kMinRms * kMinRms * m_dwLength) {
      sums.dSegments += Ratio();
      ++sums.qwSegments;
    }
    m_dSignal = 0.0;
    m_dNoise = 0.0;
    m_dwFilled = 0;
  }

 private:
  [[nodiscard]] double Ratio() const {
    if (m_dNoise == 0.0) return kMaxSegment;
    return std::clamp(10 * std::log10(m_dSignal / m_dNoise), kMinSegment, kMaxSegment);
  }

  std::uint32_t m_dwLength;
  std::uint32_t m_dwFilled = 0;
  double m_dSignal = 0.0;
  double m_dNoise = 0.0;
};

class C_Comparing {
 public:
  C_Comparing(C_SampleSource& first, C_SampleSource& second, std::int64_t nLag,
              std::uint32_t dwRate)
      : m_first(first),
        m_second(second),
        m_nChannels(first.Channels()),
        m_nPiece(std::max<std::size_t>(kPiece / m_nChannels, 1)),
        m_segments(m_nChannels, C_Segments(dwRate)) {
    m_result.nLag = nLag;
    m_result.channels.resize(m_nChannels);
    m_result.first.levels.resize(m_nChannels);
    m_result.second.levels.resize(m_nChannels);
  }

  S_Comparison Run() {
    m_first.Rewind();
    m_second.Rewind();
    const std::int64_t nLag = m_result.nLag;
    const auto qwHead = static_cast<std::uint64_t>(nLag < 0 ? -nLag : nLag);
    if (nLag < 0) m_result.first.qwBefore = TakeAlone(m_first, m_result.first, qwHead);
    if (nLag > 0) m_result.second.qwBefore = TakeAlone(m_second, m_result.second, qwHead);
    CompareBoth();
    m_result.first.qwAfter += TakeAlone(m_first, m_result.first, UINT64_MAX);
    m_result.second.qwAfter += TakeAlone(m_second, m_result.second, UINT64_MAX);
    return std::move(m_result);
  }

 private:
  // Frames that only this sound has. Returns how many there were.
  std::uint64_t TakeAlone(C_SampleSource& source, S_Side& side, std::uint64_t qwMost) {
    std::vector<double> samples(m_nPiece * m_nChannels);
    std::uint64_t qwDone = 0;
    while (qwDone < qwMost) {
      const auto nWanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(qwMost - qwDone, m_nPiece));
      const std::size_t nFrames = source.Read(std::span(samples).first(nWanted * m_nChannels));
      if (nFrames == 0) break;
      CountAlone(std::span(samples).first(nFrames * m_nChannels), side);
      qwDone += nFrames;
    }
    return qwDone;
  }
  void CountAlone(std::span<const double> samples, S_Side& side) const {
    side.qwFrames += samples.size() / m_nChannels;
    for (std::size_t n = 0; n < samples.size(); ++n) {
      side.levels[n % m_nChannels].Add(samples[n]);
      side.bHeardAlone = side.bHeardAlone || samples[n] != 0.0;
    }
  }

  void CompareBoth() {
    std::vector<double> a(m_nPiece * m_nChannels);
    std::vector<double> b(a.size());
    while (true) {
      const std::size_t nA = m_first.Read(a);
      const std::size_t nB = m_second.Read(b);
      const std::size_t nBoth = std::min(nA, nB);
      CompareFrames(std::span(a).first(nBoth * m_nChannels), b);
      if (nBoth == m_nPiece) continue;
      EndAlone(a, nA, nBoth, m_result.first);
      EndAlone(b, nB, nBoth, m_result.second);
      return;
    }
  }
  // What of the last piece the other sound does not have.
  void EndAlone(std::span<const double> samples, std::size_t nFrames, std::size_t nBoth,
                S_Side& side) const {
    side.qwAfter += nFrames - nBoth;
    CountAlone(samples.subspan(nBoth * m_nChannels, (nFrames - nBoth) * m_nChannels), side);
  }

  void CompareFrames(std::span<const double> a, std::span<const double> b) {
    for (std::size_t n = 0; n < a.size(); ++n) {
      if (!AreEqual(a[n], b[n]) && !m_result.qwFirstFrame) {
        m_result.qwFirstFrame = m_result.first.qwBefore + m_result.qwFrames + n / m_nChannels;
      }
      CompareSamples(n % m_nChannels, a[n], b[n]);
    }
    const std::size_t nFrames = a.size() / m_nChannels;
    m_result.qwFrames += nFrames;
    m_result.first.qwFrames += nFrames;
    m_result.second.qwFrames += nFrames;
  }
  void CompareSamples(std::size_t nChannel, double dA, double dB) {
    S_Sums& sums = m_result.channels[nChannel];
    ++sums.qwSamples;
    if (!AreEqual(dA, dB)) ++sums.qwDiffering;
    dA = Finite(dA);
    dB = Finite(dB);
    m_result.first.levels[nChannel].Add(dA);
    m_result.second.levels[nChannel].Add(dB);
    const double dDifference = dA - dB;
    sums.dGreatest = std::max(sums.dGreatest, std::abs(dDifference));
    sums.dSignal += dA * dA;
    sums.dNoise += dDifference * dDifference;
    m_segments[nChannel].Add(dA * dA, dDifference * dDifference, sums);
  }

  C_SampleSource& m_first;
  C_SampleSource& m_second;
  std::size_t m_nChannels;
  std::size_t m_nPiece;
  std::vector<C_Segments> m_segments;
  S_Comparison m_result;
};

}  // namespace

S_Sums& S_Sums::operator+=(const S_Sums& other) {
  qwSamples += other.qwSamples;
  qwDiffering += other.qwDiffering;
  dGreatest = std::max(dGreatest, other.dGreatest);
  dSignal += other.dSignal;
  dNoise += other.dNoise;
  dSegments += other.dSegments;
  qwSegments += other.qwSegments;
  return *this;
}

std::optional<double> S_Sums::Snr() const {
  if (dNoise == 0.0) return {};
  return Decibels(dSignal / dNoise);
}

std::optional<double> S_Sums::SegmentalSnr() const {
  if (qwSegments == 0) return {};
  return dSegments / static_cast<double>(qwSegments);
}

S_Level& S_Level::operator+=(const S_Level& other) {
  qwSamples += other.qwSamples;
  dSquares += other.dSquares;
  dPeak = std::max(dPeak, other.dPeak);
  return *this;
}

void S_Level::Add(double dSample) {
  dSample = Finite(dSample);
  ++qwSamples;
  dSquares += dSample * dSample;
  dPeak = std::max(dPeak, std::abs(dSample));
}

std::optional<double> S_Level::Rms() const {
  if (qwSamples == 0) return {};
  return Decibels(dSquares / static_cast<double>(qwSamples));
}

std::optional<double> S_Level::Peak() const { return Decibels(dPeak * dPeak); }

bool S_Comparison::IsEqual() const {
  return !qwFirstFrame && first.Alone() == 0 && second.Alone() == 0;
}

S_Comparison Compare(C_SampleSource& first, C_SampleSource& second, std::int64_t nLag,
                     std::uint32_t dwRate) {
  return C_Comparing(first, second, nLag, dwRate).Run();
}

}  // namespace tool
