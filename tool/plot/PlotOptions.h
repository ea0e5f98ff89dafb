// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>

#include "base/TimeText.h"

namespace tool {

inline constexpr int kUsualWidth = 1200;
inline constexpr int kUsualHeight = 600;
inline constexpr int kLeastSize = 16;
inline constexpr int kGreatestSize = 8192;

// What a picture shows, and how.
struct S_PlotOptions {
  int nWidth = kUsualWidth;
  int nHeight = 0;  // 0: as high as the number of channels asks for
  bool bWaveform = true;
  bool bSpectrogram = true;
  bool bAxes = true;
  bool bDark = false;
  bool bSvg = false;
  std::uint32_t dwChannel = 0;  // counted from 1; 0 for all
  std::optional<C_Time> from;   // otherwise the beginning
  std::optional<C_Time> to;     // and the end
};

}  // namespace tool
