// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "measure/SpectrumMeter.h"
#include "plot/Scene.h"

namespace tool {

void DrawSpectrum(I_Canvas& canvas, const S_Box& panel, const C_SpectrumMeter* pSpectrum,
                  const S_LevelColours& colours);

}  // namespace tool
