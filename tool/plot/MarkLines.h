// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "plot/Scene.h"

namespace tool {

// Draws the marks through all panels with their names above, and the ranges as bars under those.
// Very many marks are only ticks above the panels.
void DrawMarks(I_Canvas& canvas, const S_Scene& scene);

}  // namespace tool
