// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "measure/WaveMeter.h"
#include "plot/Scene.h"

namespace tool {

// Where an amplitude of -1 to 1 is in a panel.
double WaveY(const S_Box& panel, double dAmplitude);

// Draws the waveform of a channel, with the ranges of the sound behind it.
void DrawWave(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel, const C_WaveMeter* pWave);

}  // namespace tool
