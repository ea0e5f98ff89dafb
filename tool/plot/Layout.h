// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <vector>

#include "picture/Canvas.h"
#include "picture/Lettering.h"
#include "plot/PlotOptions.h"

namespace tool {

// What is above the panels.
struct S_Heading {
  int nLegendRows = 0;
  int nNameRows = 0;
  bool bTicks = false;  // marks that have no lines through the panels
  int nBars = 0;        // kinds of ranges
};

// Where everything stands in a picture. All edges of panels are whole pixels.
class C_Layout {
 public:
  C_Layout(const S_PlotOptions& options, int nHeight);

  // The height of letters.
  [[nodiscard]] double Letters() const noexcept { return m_dLetters; }
  // How many rows of names fit at most.
  [[nodiscard]] int MostNameRows() const noexcept;
  [[nodiscard]] int Left() const noexcept { return m_nLeft; }
  [[nodiscard]] int Columns() const noexcept { return m_nColumns; }
  // Whether there is room for a scale of the colours, and for titles of the axes.
  [[nodiscard]] bool HasScale() const noexcept { return m_bScale; }
  [[nodiscard]] bool HasTitles() const noexcept { return m_bTitles; }

  // Shares the rest of the height out among the panels. False when they do not fit.
  [[nodiscard]] bool Arrange(const S_Heading& heading, std::size_t nChannels);

  [[nodiscard]] double LegendTop() const noexcept { return m_dLegend; }
  [[nodiscard]] double NamesTop() const noexcept { return m_dNames; }
  [[nodiscard]] double NameRow() const noexcept;
  [[nodiscard]] double TicksTop() const noexcept { return m_dTicks; }
  [[nodiscard]] double Tick() const noexcept { return Bar(); }
  [[nodiscard]] double BarsTop() const noexcept { return m_dBars; }
  [[nodiscard]] double Bar() const noexcept;
  // One for each channel, as far as they are shown.
  [[nodiscard]] const std::vector<S_Box>& Waves() const noexcept { return m_waves; }
  [[nodiscard]] const std::vector<S_Box>& Spectra() const noexcept { return m_spectra; }
  // Around all panels.
  [[nodiscard]] S_Box Panels() const noexcept;

 private:
  void SetMargins(const S_PlotOptions& options);
  [[nodiscard]] int Under() const;

  bool m_bAxes;
  bool m_bWaves;
  bool m_bSpectra;
  int m_nHeight;
  double m_dLetters;
  int m_nLeft = 0;
  int m_nColumns;
  bool m_bScale = false;
  bool m_bTitles = false;
  double m_dLegend = 0.0;
  double m_dNames = 0.0;
  double m_dTicks = 0.0;
  double m_dBars = 0.0;
  std::vector<S_Box> m_waves;
  std::vector<S_Box> m_spectra;
};

}  // namespace tool
