// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "measure/Columns.h"

namespace tool {

struct S_WaveColumn {
  float fLeast = 0.0F;
  float fGreatest = 0.0F;
  double dSquares = 0.0;
  std::uint64_t qwFrames = 0;
  bool bClipped = false;
};

// Looks at the samples of a channel, one piece after the other, and keeps of each column of a
// picture what a waveform shows. A sample is clipped when it is one of three or more in a row at
// full scale on the same side.
class C_WaveMeter {
 public:
  // Samples of dwBits bits; 0 for floating point.
  C_WaveMeter(const C_Columns& columns, std::uint32_t dwBits);

  void Add(std::span<const float> samples);

  [[nodiscard]] const C_Columns& Columns() const noexcept { return m_columns; }
  [[nodiscard]] const std::vector<S_WaveColumn>& Waves() const noexcept { return m_waves; }
  // The samples themselves, when there are no more of them than columns.
  [[nodiscard]] const std::vector<float>& Samples() const noexcept { return m_samples; }
  [[nodiscard]] std::uint64_t Clippings() const noexcept { return m_qwClippings; }

 private:
  void AddToColumn(std::span<const float> samples);
  void LookForClipping(float fSample, S_WaveColumn& wave);

  C_Columns m_columns;
  float m_fFullScale;
  std::vector<S_WaveColumn> m_waves;
  std::vector<float> m_samples;
  std::uint64_t m_qwFrame = 0;
  int m_nColumn = 0;
  int m_nSide = 0;  // of the run of samples at full scale
  std::uint64_t m_qwRun = 0;
  std::uint64_t m_qwClippings = 0;
};

}  // namespace tool
