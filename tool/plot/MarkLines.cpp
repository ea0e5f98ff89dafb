// SPDX-License-Identifier: Apache-2.0
#include "plot/MarkLines.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

constexpr double kHalo = 0.55;

double LineX(const S_Scene& scene, const S_Mark& mark) { return ColumnX(scene, mark.nColumn); }

// A line that is seen on any colour of a spectrogram.
void DrawThrough(I_Canvas& canvas, const S_Scene& scene, const S_Mark& mark) {
  const S_Box panels = scene.layout.Panels();
  S_Colour halo = scene.theme.paper;
  halo.dCover = kHalo;
  const double dX = LineX(scene, mark);
  for (const S_Box& spectrum : scene.layout.Spectra()) {
    const double dLeft = std::max(dX - 1, panels.dX);
    const double dWidth = std::min(dX + 2, panels.Right()) - dLeft;
    canvas.Fill(S_Box{dLeft, spectrum.dY, dWidth, spectrum.dHeight}, halo);
  }
  canvas.Fill(S_Box{dX, panels.dY, 1, panels.dHeight}, ColourOf(scene.theme, mark.eKind));
}

void DrawBars(I_Canvas& canvas, const S_Scene& scene) {
  double dY = scene.layout.BarsTop();
  for (const tagRangeKind eKind : {RANGE_SILENCE, RANGE_REGION, RANGE_LOOP, RANGE_TEXT}) {
    if (scene.marks.ranges[eKind].empty()) continue;
    for (const S_Run& run : scene.marks.ranges[eKind]) {
      canvas.Fill(S_Box{ColumnX(scene, run.nFirst), dY, static_cast<double>(run.nEnd - run.nFirst),
                        scene.layout.Bar()},
                  ColourOf(scene.theme, eKind));
    }
    dY += scene.layout.Bar() + 1;
  }
}

void DrawNames(I_Canvas& canvas, const S_Scene& scene) {
  const C_Layout& layout = scene.layout;
  const bool bCrowded = scene.marks.AreCrowded(layout.Columns());
  for (const S_PlacedName& name : scene.names.names) {
    const S_Mark& mark = scene.marks.marks[name.nMark];
    const double dTop = layout.NamesTop() + name.nRow * layout.NameRow();
    const S_Colour& colour = ColourOf(scene.theme, mark.eKind);
    const double dEnd = bCrowded ? layout.TicksTop() : layout.Panels().dY;
    canvas.Fill(S_Box{LineX(scene, mark), dTop, 1, dEnd - dTop}, colour);
    canvas.Text({ColumnX(scene, name.dX), dTop + 1.02 * layout.Letters()}, name.strText,
                {.dSize = layout.Letters(), .colour = colour});
  }
}

}  // namespace

void DrawMarks(I_Canvas& canvas, const S_Scene& scene) {
  const C_Layout& layout = scene.layout;
  const bool bCrowded = scene.marks.AreCrowded(layout.Columns());
  for (const S_Mark& mark : scene.marks.marks) {
    if (!bCrowded) {
      DrawThrough(canvas, scene, mark);
    } else if (scene.options.bAxes) {
      canvas.Fill(S_Box{LineX(scene, mark), layout.TicksTop(), 1, layout.Tick()},
                  ColourOf(scene.theme, mark.eKind));
    }
  }
  if (!scene.options.bAxes) return;
  DrawBars(canvas, scene);
  DrawNames(canvas, scene);
}

}  // namespace tool
