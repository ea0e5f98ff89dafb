// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <complex>
#include <cstdint>
#include <span>
#include <vector>

#include "measure/Columns.h"
#include "measure/RealTransform.h"

namespace tool {

// Levels are -100 to 0 dBFS, as 0 to 255. A sine of full scale has 0 dBFS.
inline constexpr double kQuietest = -100.0;
inline constexpr int kLoudestLevel = 255;

// Looks at the samples of a channel, one piece after the other, and makes of each column of a
// picture one spectrum: the mean power of windows (Hann) that overlap by at least half.
class C_SpectrumMeter {
 public:
  // Rows from half of the rate, at the top, to 0 Hz.
  C_SpectrumMeter(const C_Columns& columns, int nRows, std::uint32_t dwRate);

  // How many frames a window reaches before and after its middle. Columns look at the sound around
  // them; so the first samples may be some from before the first column, at most this many.
  [[nodiscard]] static std::size_t Reach(std::uint32_t dwRate);
  void AddBefore(std::span<const float> samples);
  // The samples of the columns, and then up to Reach() more.
  void Add(std::span<const float> samples);
  // At the end.
  void Finish();

  // Row after row.
  [[nodiscard]] const std::vector<std::uint8_t>& Levels() const noexcept { return m_levels; }

 private:
  // A row shows the largest of several bins, or something between two.
  struct S_Row {
    std::size_t nFirst;
    std::size_t nLast;
    double dBetween;
  };

  [[nodiscard]] double Middle() const;
  void Work();
  void Transform(std::size_t nFrom);
  void CloseColumn();
  [[nodiscard]] double LevelOf(const S_Row& row) const;
  void PrepareRows(int nRows);

  C_Columns m_columns;
  C_RealTransform m_transform;
  std::vector<float> m_window;
  std::vector<S_Row> m_rows;
  std::uint64_t m_qwPerColumn;
  std::vector<float> m_samples;  // those that are still needed
  double m_dStart;               // the frame of the first of them
  std::uint64_t m_qwDone = 0;    // windows of this column
  int m_nColumn = 0;
  std::vector<float> m_weighted;
  std::vector<std::complex<float>> m_bins;
  std::vector<double> m_power;  // of each bin
  std::vector<std::uint8_t> m_levels;
};

}  // namespace tool
