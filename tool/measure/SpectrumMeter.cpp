// SPDX-License-Identifier: Apache-2.0
#include "measure/SpectrumMeter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tool {
namespace {

// A compromise between telling frequencies and telling times apart, good for speech.
constexpr double kWindowSeconds = 0.03;
constexpr int kLeastBits = 6;
constexpr int kMostBits = 14;
constexpr double kNothing = 1e-30;

// The nearest power of two.
std::size_t WindowLength(std::uint32_t dwRate) {
  const double dBits = std::round(std::log2(kWindowSeconds * std::max(dwRate, 1U)));
  return std::size_t{1} << std::clamp(static_cast<int>(dBits), kLeastBits, kMostBits);
}

// Its sum makes a sine of full scale 1.
std::vector<float> HannWindow(std::size_t nLength) {
  std::vector<float> window(nLength);
  const double dLength = static_cast<double>(nLength);
  for (std::size_t n = 0; n < nLength; ++n) {
    const double dAngle = 2 * std::numbers::pi * (static_cast<double>(n) + 0.5) / dLength;
    window[n] = static_cast<float>((1 - std::cos(dAngle)) * 2 / dLength);
  }
  return window;
}

// Windows lie no farther apart than half of their length.
std::uint64_t WindowsPerColumn(const C_Columns& columns, std::size_t nWindow) {
  const double dFrames = static_cast<double>(columns.Frames()) / columns.Count();
  return static_cast<std::uint64_t>(
      std::max(1.0, std::ceil(dFrames / (static_cast<double>(nWindow) / 2))));
}

double Decibels(double dPower) { return 10 * std::log10(std::max(dPower, kNothing)); }

std::uint8_t LevelByte(double dLevel) {
  const double dAt = (dLevel - kQuietest) / -kQuietest;
  return static_cast<std::uint8_t>(std::lround(std::clamp(dAt, 0.0, 1.0) * kLoudestLevel));
}

}  // namespace

C_SpectrumMeter::C_SpectrumMeter(const C_Columns& columns, int nRows, std::uint32_t dwRate)
    : m_columns(columns),
      m_transform(WindowLength(dwRate)),
      m_window(HannWindow(m_transform.Length())),
      m_qwPerColumn(WindowsPerColumn(columns, m_window.size())),
      m_samples(m_window.size() / 2),
      m_dStart(-static_cast<double>(m_samples.size())),
      m_weighted(m_window.size()),
      m_bins(m_transform.Bins()),
      m_power(m_transform.Bins()) {
  PrepareRows(nRows);
  m_levels.resize(m_rows.size() * static_cast<std::size_t>(columns.Count()));
}

std::size_t C_SpectrumMeter::Reach(std::uint32_t dwRate) { return WindowLength(dwRate) / 2; }

void C_SpectrumMeter::AddBefore(std::span<const float> samples) {
  std::copy(samples.begin(), samples.end(),
            m_samples.end() - static_cast<std::ptrdiff_t>(samples.size()));
}

void C_SpectrumMeter::Add(std::span<const float> samples) {
  m_samples.insert(m_samples.end(), samples.begin(), samples.end());
  Work();
}

void C_SpectrumMeter::Finish() {
  m_samples.resize(m_samples.size() + m_window.size());
  Work();
}

double C_SpectrumMeter::Middle() const {
  const double dWindow = (static_cast<double>(m_qwDone) + 0.5) / static_cast<double>(m_qwPerColumn);
  const double dColumns = static_cast<double>(m_nColumn) + dWindow;
  return std::floor(dColumns / m_columns.Count() * static_cast<double>(m_columns.Frames()));
}

void C_SpectrumMeter::Work() {
  const double dReach = static_cast<double>(m_window.size()) / 2;
  while (m_nColumn < m_columns.Count()) {
    const double dFrom = Middle() - dReach - m_dStart;
    if (dFrom + 2 * dReach > static_cast<double>(m_samples.size())) break;
    Transform(static_cast<std::size_t>(dFrom));
    if (++m_qwDone == m_qwPerColumn) CloseColumn();
  }
  if (m_nColumn == m_columns.Count()) return;
  const double dUsed = std::max(0.0, Middle() - dReach - m_dStart);
  const auto nUsed = std::min(static_cast<std::size_t>(dUsed), m_samples.size());
  m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(nUsed));
  m_dStart += static_cast<double>(nUsed);
}

void C_SpectrumMeter::Transform(std::size_t nFrom) {
  for (std::size_t n = 0; n < m_window.size(); ++n) {
    m_weighted[n] = m_samples[nFrom + n] * m_window[n];
  }
  m_transform.Forward(m_weighted, m_bins);
  for (std::size_t n = 0; n < m_bins.size(); ++n) {
    m_power[n] += static_cast<double>(std::norm(m_bins[n]));
  }
}

void C_SpectrumMeter::CloseColumn() {
  // The ends of the spectrum have no second half.
  m_power.front() /= 4;
  m_power.back() /= 4;
  for (double& dBin : m_power) dBin /= static_cast<double>(m_qwPerColumn);
  const auto nColumns = static_cast<std::size_t>(m_columns.Count());
  for (std::size_t nRow = 0; nRow < m_rows.size(); ++nRow) {
    m_levels[nRow * nColumns + static_cast<std::size_t>(m_nColumn)] =
        LevelByte(LevelOf(m_rows[nRow]));
  }
  std::fill(m_power.begin(), m_power.end(), 0.0);
  m_qwDone = 0;
  ++m_nColumn;
}

double C_SpectrumMeter::LevelOf(const S_Row& row) const {
  const auto first = m_power.begin() + static_cast<std::ptrdiff_t>(row.nFirst);
  const auto last = m_power.begin() + static_cast<std::ptrdiff_t>(row.nLast);
  if (row.dBetween == 0.0) return Decibels(*std::max_element(first, last + 1));
  return Decibels(*first) * (1 - row.dBetween) + Decibels(*last) * row.dBetween;
}

void C_SpectrumMeter::PrepareRows(int nRows) {
  const double dBins = static_cast<double>(m_transform.Bins() - 1);
  for (int nRow = nRows - 1; nRow >= 0; --nRow) {
    const double dLow = dBins * nRow / nRows;
    const double dHigh = dBins * (nRow + 1) / nRows;
    const double dMiddle = (dLow + dHigh) / 2;
    if (dHigh - dLow > 1.0) {
      // Each bin belongs to the row that its frequency is in.
      const double dFirst = std::ceil(dLow);
      const double dLast = nRow == nRows - 1 ? dBins : std::max(dFirst, std::ceil(dHigh) - 1);
      m_rows.push_back({static_cast<std::size_t>(dFirst), static_cast<std::size_t>(dLast), 0.0});
    } else {
      const auto nBelow = static_cast<std::size_t>(dMiddle);
      const double dBetween = dMiddle - std::floor(dMiddle);
      m_rows.push_back({nBelow, dBetween > 0.0 ? nBelow + 1 : nBelow, dBetween});
    }
  }
}

}  // namespace tool
