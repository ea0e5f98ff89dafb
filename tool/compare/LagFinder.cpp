// SPDX-License-Identifier: Apache-2.0
#include "compare/LagFinder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <set>
#include <vector>

#include "measure/RealTransform.h"

namespace tool {
namespace {

constexpr std::size_t kEnoughFrames = std::size_t{1} << 21U;
constexpr std::size_t kReadSamples = 65536;
constexpr std::size_t kLeastTransform = 8192;
// Mean square of a piece from which it counts: that of -80 dBFS.
constexpr double kAudible = 1e-8;
constexpr std::size_t kMostPeaks = 6;
constexpr int kAroundPeak = 2;  // rounding may move a peak that is flat
// What a lag must leave of the difference at most, compared with no lag.
constexpr double kClearlyBetter = 0.9;
constexpr double kSame = 1e-9;

double Product(float fA, float fB) { return static_cast<double>(fA) * static_cast<double>(fB); }

// The sum of all channels of a sound, in order; silence after its end.
class C_MonoReader {
 public:
  // A sound may have very many channels: frames are read as far as so many samples allow.
  explicit C_MonoReader(C_SampleSource& source)
      : m_source(source),
        m_frames(std::max<std::size_t>(kReadSamples / source.Channels(), 1) * source.Channels()) {
    m_source.Rewind();
  }

  // The number of frames before the end.
  std::size_t Read(std::span<float> mono) {
    std::fill(mono.begin(), mono.end(), 0.0F);
    std::size_t nDone = 0;
    while (const std::size_t nFrames = AddPiece(mono.subspan(nDone))) nDone += nFrames;
    return nDone;
  }

 private:
  std::size_t AddPiece(std::span<float> mono) {
    const std::size_t nChannels = m_source.Channels();
    const std::size_t nWanted = std::min(mono.size() * nChannels, m_frames.size());
    const std::size_t nFrames = m_source.Read(std::span(m_frames).first(nWanted));
    for (std::size_t n = 0; n < nFrames * nChannels; ++n) {
      const double dSample = m_frames[n];
      if (std::isfinite(dSample)) mono[n / nChannels] += static_cast<float>(dSample);
    }
    return nFrames;
  }

  C_SampleSource& m_source;
  std::vector<double> m_frames;
};

// Pieces of the first sound, each with the part of the second in which it may be found: from
// nMostLag frames before its beginning to as many after its end.
class C_Pieces {
 public:
  C_Pieces(C_SampleSource& first, C_SampleSource& second, std::size_t nMostLag, std::size_t nLength)
      : m_first(first), m_second(second), m_piece(nLength), m_around(nLength + 2 * nMostLag) {
    const std::size_t nAhead = std::min(nMostLag, m_around.size());
    m_second.Read(std::span(m_around).last(nAhead));
  }

  // The next piece that is not silent; false when there are no more, or enough were seen.
  bool Next() {
    while (m_nSeen < kEnoughFrames && (m_nFrames = m_first.Read(m_piece)) > 0) {
      Advance();
      if (!IsAudible()) continue;
      m_nSeen += m_nFrames;
      return true;
    }
    return false;
  }
  // The last one is shorter than the others.
  [[nodiscard]] std::span<const float> Piece() const { return std::span(m_piece).first(m_nFrames); }
  [[nodiscard]] std::span<const float> Around() const { return m_around; }

 private:
  void Advance() {
    const auto nLength = static_cast<std::ptrdiff_t>(m_piece.size());
    std::copy(m_around.begin() + nLength, m_around.end(), m_around.begin());
    m_second.Read(std::span(m_around).last(m_piece.size()));
  }
  [[nodiscard]] bool IsAudible() const {
    double dSquares = 0.0;
    for (const float fSample : Piece()) dSquares += Product(fSample, fSample);
    return dSquares >= kAudible * static_cast<double>(m_nFrames);
  }

  C_MonoReader m_first;
  C_MonoReader m_second;
  std::vector<float> m_piece;
  std::vector<float> m_around;
  std::size_t m_nFrames = 0;  // in the piece
  std::size_t m_nSeen = 0;
};

// What a lag leaves of the first sound when the second, at its best volume, is taken from it.
struct S_Candidate {
  std::int64_t nLag = 0;
  double dProduct = 0.0;
  double dSecond = 0.0;
};

class C_LagFinder {
 public:
  C_LagFinder(C_SampleSource& first, C_SampleSource& second, std::size_t nMostLag)
      : m_first(first),
        m_second(second),
        m_nMostLag(nMostLag),
        m_transform(std::max(kLeastTransform, std::bit_ceil(4 * nMostLag))),
        m_nPiece(m_transform.Length() - 2 * nMostLag) {}

  std::int64_t Find() {
    std::vector<S_Candidate> candidates;
    for (const std::int64_t nLag : LikelyLags()) candidates.push_back({nLag});
    MeasureAll(candidates);
    return Best(candidates);
  }

 private:
  [[nodiscard]] C_Pieces Pieces() const {
    return C_Pieces(m_first, m_second, m_nMostLag, m_nPiece);
  }

  // The cross-correlation at each lag from -m_nMostLag on.
  std::vector<float> Correlation() {
    std::vector<std::complex<float>> sum(m_transform.Bins());
    std::vector<std::complex<float>> firstBins(m_transform.Bins());
    std::vector<std::complex<float>> secondBins(m_transform.Bins());
    std::vector<float> padded(m_transform.Length());
    C_Pieces pieces = Pieces();
    while (pieces.Next()) {
      const auto end = std::copy(pieces.Piece().begin(), pieces.Piece().end(), padded.begin());
      std::fill(end, padded.end(), 0.0F);
      m_transform.Forward(padded, firstBins);
      m_transform.Forward(pieces.Around(), secondBins);
      for (std::size_t n = 0; n < sum.size(); ++n) {
        sum[n] += std::conj(firstBins[n]) * secondBins[n];
      }
    }
    m_transform.Backward(sum, padded);
    padded.resize(2 * m_nMostLag + 1);
    return padded;
  }

  // The highest peaks with what is beside them, and no lag at all.
  std::set<std::int64_t> LikelyLags() {
    const std::vector<float> correlation = Correlation();
    std::vector<std::size_t> peaks;
    for (std::size_t n = 0; n < correlation.size(); ++n) {
      const bool bRises = n == 0 || correlation[n] >= correlation[n - 1];
      const bool bFalls = n + 1 == correlation.size() || correlation[n] >= correlation[n + 1];
      if (bRises && bFalls && correlation[n] > 0.0F) peaks.push_back(n);
    }
    const auto nPeaks = static_cast<std::ptrdiff_t>(std::min(kMostPeaks, peaks.size()));
    std::partial_sort(peaks.begin(), peaks.begin() + nPeaks, peaks.end(),
                      [&](auto a, auto b) { return correlation[a] > correlation[b]; });
    const auto nMost = static_cast<std::int64_t>(m_nMostLag);
    std::set<std::int64_t> lags = {0};
    for (auto peak = peaks.begin(); peak != peaks.begin() + nPeaks; ++peak) {
      for (int nBeside = -kAroundPeak; nBeside <= kAroundPeak; ++nBeside) {
        const std::int64_t nLag = static_cast<std::int64_t>(*peak) - nMost + nBeside;
        if (std::abs(nLag) <= nMost) lags.insert(nLag);
      }
    }
    return lags;
  }

  void MeasureAll(std::vector<S_Candidate>& candidates) {
    C_Pieces pieces = Pieces();
    while (pieces.Next()) {
      for (const float fSample : pieces.Piece()) m_dFirst += Product(fSample, fSample);
      for (S_Candidate& candidate : candidates) {
        const auto nFrom =
            static_cast<std::size_t>(candidate.nLag + static_cast<std::int64_t>(m_nMostLag));
        Add(pieces.Piece(), pieces.Around().subspan(nFrom), candidate);
      }
    }
  }
  // Where the first sound has ended, the second one explains nothing of it, and may go on.
  static void Add(std::span<const float> first, std::span<const float> second,
                  S_Candidate& candidate) {
    for (std::size_t n = 0; n < first.size(); ++n) {
      candidate.dProduct += Product(first[n], second[n]);
      candidate.dSecond += Product(second[n], second[n]);
    }
  }

  [[nodiscard]] double Left(const S_Candidate& candidate) const {
    if (candidate.dProduct <= 0.0 || candidate.dSecond <= 0.0) return m_dFirst;
    const double dExplained = candidate.dProduct * candidate.dProduct / candidate.dSecond;
    return std::max(0.0, m_dFirst - dExplained);
  }
  // Of lags that are equally good, as those of a tone are, the smallest.
  [[nodiscard]] std::int64_t Best(const std::vector<S_Candidate>& candidates) const {
    double dLeast = m_dFirst;
    double dWithout = m_dFirst;
    for (const S_Candidate& candidate : candidates) {
      dLeast = std::min(dLeast, Left(candidate));
      if (candidate.nLag == 0) dWithout = Left(candidate);
    }
    const double dSlack = kSame * m_dFirst;
    if (dLeast + dSlack > kClearlyBetter * dWithout) return 0;
    std::int64_t nBest = INT64_MAX;
    for (const S_Candidate& candidate : candidates) {
      const bool bAsGood = Left(candidate) <= dLeast + dSlack;
      if (bAsGood && std::abs(candidate.nLag) < std::abs(nBest)) nBest = candidate.nLag;
    }
    return nBest;
  }

  C_SampleSource& m_first;
  C_SampleSource& m_second;
  std::size_t m_nMostLag;
  C_RealTransform m_transform;
  std::size_t m_nPiece;
  double m_dFirst = 0.0;
};

}  // namespace

std::int64_t FindLag(C_SampleSource& first, C_SampleSource& second, std::size_t nMostLag) {
  if (nMostLag == 0) return 0;
  return C_LagFinder(first, second, std::min(nMostLag, kMostLag)).Find();
}

}  // namespace tool
