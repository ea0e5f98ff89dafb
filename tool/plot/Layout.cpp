// SPDX-License-Identifier: Apache-2.0
#include "plot/Layout.h"

#include <algorithm>
#include <cmath>

#include "plot/Legend.h"

namespace tool {
namespace {

// Letters grow with the picture, more slowly than it.
constexpr double kUsualLetters = 11.5;
constexpr double kLeastLetters = 9.5;
constexpr double kGreatestLetters = 22.0;
// Smaller pictures have no titles of axes and no scale of colours.
constexpr int kWidthForScale = 460;
constexpr int kHeightForTitles = 280;
constexpr int kHeightPerNameRow = 150;
constexpr int kMostNameRows = 4;
constexpr int kLeastColumns = 32;
constexpr double kLeastPanel = 2.4;  // in letters' heights
constexpr int kLeastBarePanel = 2;   // pixels
// How much higher a spectrogram is than a waveform.
constexpr double kSpectrumShare = 1.35;

int Pixels(double d) { return static_cast<int>(std::ceil(d)); }

double LettersFor(int nWidth, int nHeight) {
  constexpr double kUsualArea = double{kUsualWidth} * kUsualHeight;
  const double dArea = static_cast<double>(nWidth) * nHeight / kUsualArea;
  return std::clamp(kUsualLetters * std::pow(dArea, 0.25), kLeastLetters, kGreatestLetters);
}

}  // namespace

C_Layout::C_Layout(const S_PlotOptions& options, int nHeight)
    : m_bAxes(options.bAxes),
      m_bWaves(options.bWaveform),
      m_bSpectra(options.bSpectrogram),
      m_nHeight(nHeight),
      // What many channels add to the height is needed for their panels.
      m_dLetters(LettersFor(options.nWidth, options.nHeight > 0 ? nHeight : kUsualHeight)),
      m_nColumns(options.nWidth) {
  if (m_bAxes) SetMargins(options);
}

void C_Layout::SetMargins(const S_PlotOptions& options) {
  m_bTitles = options.nWidth >= kWidthForScale && m_nHeight >= kHeightForTitles;
  m_bScale = m_bSpectra && options.nWidth >= kWidthForScale;
  m_nLeft = Pixels((m_bTitles ? 4.6 : 3.2) * m_dLetters);
  const int nRight = Pixels((m_bScale ? 6.8 : 1.2) * m_dLetters);
  m_nColumns = options.nWidth - m_nLeft - nRight;
}

int C_Layout::MostNameRows() const noexcept {
  return std::clamp(m_nHeight / kHeightPerNameRow, 1, kMostNameRows);
}

double C_Layout::NameRow() const noexcept { return std::ceil(1.35 * m_dLetters); }
double C_Layout::Bar() const noexcept { return std::ceil(0.5 * m_dLetters); }

int C_Layout::Under() const { return Pixels((m_bTitles ? 3.5 : 1.9) * m_dLetters); }

bool C_Layout::Arrange(const S_Heading& heading, std::size_t nChannels) {
  double dTop = 0.0;
  if (m_bAxes) {
    m_dLegend = std::ceil(3.7 * m_dLetters);
    m_dNames =
        m_dLegend + std::ceil(heading.nLegendRows * kLegendRow * m_dLetters + 0.5 * m_dLetters);
    m_dTicks = m_dNames + heading.nNameRows * NameRow() + (heading.nNameRows > 0 ? 2.0 : 0.0);
    m_dBars = m_dTicks + (heading.bTicks ? Tick() + 1 : 0.0);
    dTop = m_dBars + heading.nBars * (Bar() + 1) + (heading.nBars > 0 ? 2.0 : 0.0);
  }
  const double dGap = m_bAxes ? std::ceil(0.7 * m_dLetters) : 0.0;
  const double dChannels = static_cast<double>(nChannels);
  const double dPanels = dChannels * ((m_bWaves ? 1 : 0) + (m_bSpectra ? 1 : 0));
  const double dShares = dChannels * ((m_bWaves ? 1.0 : 0.0) + (m_bSpectra ? kSpectrumShare : 0.0));
  const double dRoom = m_nHeight - dTop - (m_bAxes ? Under() : 0) - dGap * (dPanels - 1);
  const double dWave = std::floor(dRoom / dShares);
  const double dLeast = m_bAxes ? kLeastPanel * m_dLetters : kLeastBarePanel;
  if (dWave < dLeast || m_nColumns < (m_bAxes ? kLeastColumns : 1)) return false;

  // Spectrograms are all of one height; what rounding leaves goes to the first panel that it can.
  const double dSpectrum = m_bSpectra ? std::floor(dRoom / dShares * kSpectrumShare) : 0.0;
  const double dRest = std::floor(dRoom - dChannels * ((m_bWaves ? dWave : 0.0) + dSpectrum));
  double dY = dTop;
  const auto place = [&](std::vector<S_Box>& boxes, double dHeight) {
    boxes.push_back({static_cast<double>(m_nLeft), dY, static_cast<double>(m_nColumns), dHeight});
    dY += dHeight + dGap;
  };
  m_waves.clear();
  m_spectra.clear();
  for (std::size_t n = 0; m_bWaves && n < nChannels; ++n) {
    place(m_waves, n == 0 ? dWave + dRest : dWave);
  }
  const double dExtra = !m_bWaves && nChannels == 1 ? dRest : 0.0;
  for (std::size_t n = 0; m_bSpectra && n < nChannels; ++n) place(m_spectra, dSpectrum + dExtra);
  return true;
}

S_Box C_Layout::Panels() const noexcept {
  const S_Box& first = m_waves.empty() ? m_spectra.front() : m_waves.front();
  const S_Box& last = m_spectra.empty() ? m_waves.back() : m_spectra.back();
  return {first.dX, first.dY, first.dWidth, last.Bottom() - first.dY};
}

}  // namespace tool
