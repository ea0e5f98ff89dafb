// SPDX-License-Identifier: Apache-2.0
//
// What is around the panels: ticks, their texts and the titles of axes.
#pragma once

#include "plot/Scene.h"

namespace tool {

void DrawTimeAxis(I_Canvas& canvas, const S_Scene& scene);
void DrawLevelAxis(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel);
void DrawFrequencyAxis(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel);
// The scale of the spectrogram's colours.
void DrawColourScale(I_Canvas& canvas, const S_Scene& scene, const S_LevelColours& colours);

}  // namespace tool
