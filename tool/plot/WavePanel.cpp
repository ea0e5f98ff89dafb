// SPDX-License-Identifier: Apache-2.0
#include "plot/WavePanel.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

constexpr double kShade = 0.16;  // of the colours of ranges
constexpr double kClipMark = 5.0;
constexpr double kDots = 6.0;    // pixels between samples from which each gets a dot
constexpr double kStems = 24.0;  // and a line to the middle

double Limited(double d) { return std::clamp(d, -1.0, 1.0); }
// What is beyond full scale is drawn there.
double Shown(float fSample) { return Limited(static_cast<double>(fSample)); }

double Rms(const S_WaveColumn& wave) {
  return wave.qwFrames == 0 ? 0.0 : std::sqrt(wave.dSquares / static_cast<double>(wave.qwFrames));
}

void DrawGrid(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel) {
  for (const double dAmplitude : {-0.5, 0.0, 0.5}) {
    canvas.Fill(S_Box{panel.dX, std::floor(WaveY(panel, dAmplitude)), panel.dWidth, 1},
                scene.theme.grid);
  }
}

void DrawRanges(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel) {
  for (const tagRangeKind eKind : {RANGE_SILENCE, RANGE_REGION, RANGE_LOOP, RANGE_TEXT}) {
    S_Colour colour = ColourOf(scene.theme, eKind);
    colour.dCover = kShade;
    for (const S_Run& run : scene.marks.ranges[eKind]) {
      canvas.Fill(S_Box{ColumnX(scene, run.nFirst), panel.dY,
                        static_cast<double>(run.nEnd - run.nFirst), panel.dHeight},
                  colour);
    }
  }
}

// From one edge to the other of each column, at least a pixel high, and touching its neighbours.
struct S_Edges {
  double dTop;
  double dBottom;
};

std::vector<S_Edges> EdgesOf(const C_WaveMeter& wave, const S_Box& panel) {
  std::vector<S_Edges> edges;
  for (const S_WaveColumn& column : wave.Waves()) {
    S_Edges here = {WaveY(panel, Shown(column.fGreatest)), WaveY(panel, Shown(column.fLeast))};
    const double dThin = std::max(0.0, 1.0 - (here.dBottom - here.dTop)) / 2;
    here = {here.dTop - dThin, here.dBottom + dThin};
    if (!edges.empty()) {
      here.dTop = std::min(here.dTop, edges.back().dBottom);
      here.dBottom = std::max(here.dBottom, edges.back().dTop);
    }
    here.dTop = std::max(here.dTop, panel.dY);
    here.dBottom = std::min(here.dBottom, panel.Bottom());
    edges.push_back(here);
  }
  return edges;
}

std::vector<S_Edges> RmsEdges(const C_WaveMeter& wave, const S_Box& panel) {
  std::vector<S_Edges> edges;
  for (const S_WaveColumn& column : wave.Waves()) {
    const double dRms = Limited(Rms(column));
    edges.push_back({WaveY(panel, std::min(dRms, Shown(column.fGreatest))),
                     WaveY(panel, std::max(-dRms, Shown(column.fLeast)))});
  }
  return edges;
}

// One outline of all columns: along the tops, and back along the bottoms.
void FillColumns(I_Canvas& canvas, double dX, const std::vector<S_Edges>& edges,
                 const S_Colour& colour) {
  std::vector<S_Point> outline;
  outline.reserve(edges.size() * 4);
  for (std::size_t n = 0; n < edges.size(); ++n) {
    outline.push_back({dX + static_cast<double>(n), edges[n].dTop});
    outline.push_back({dX + static_cast<double>(n) + 1, edges[n].dTop});
  }
  for (std::size_t n = edges.size(); n-- > 0;) {
    outline.push_back({dX + static_cast<double>(n) + 1, edges[n].dBottom});
    outline.push_back({dX + static_cast<double>(n), edges[n].dBottom});
  }
  canvas.Fill(outline, colour);
}

void DrawColumns(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel,
                 const C_WaveMeter& wave) {
  FillColumns(canvas, panel.dX, EdgesOf(wave, panel), scene.theme.peak);
  FillColumns(canvas, panel.dX, RmsEdges(wave, panel), scene.theme.mean);
}

// Few samples are drawn one by one.
void DrawSamples(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel,
                 const C_WaveMeter& wave) {
  const double dStep = panel.dWidth / static_cast<double>(wave.Samples().size());
  std::vector<S_Point> points;
  for (const float fSample : wave.Samples()) {
    points.push_back({panel.dX + (static_cast<double>(points.size()) + 0.5) * dStep,
                      WaveY(panel, Shown(fSample))});
  }
  const double dMiddle = WaveY(panel, 0.0);
  for (const S_Point& point : points) {
    if (dStep < kStems) break;
    const S_Point stem[] = {{point.dX, dMiddle}, point};
    canvas.Line(stem, scene.theme.peak, 1.0);
  }
  canvas.Line(points, scene.theme.mean, 1.25);
  for (const S_Point& point : points) {
    if (dStep >= kDots) canvas.Dot(point, std::min(dStep / 5, 3.0), scene.theme.mean);
  }
}

void DrawClipping(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel,
                  const C_WaveMeter& wave) {
  const double dMark = std::min(kClipMark, panel.dHeight / 6);
  const auto nColumns = static_cast<int>(wave.Waves().size());
  const auto isClipped = [&](int n) { return wave.Waves()[static_cast<std::size_t>(n)].bClipped; };
  for (int nFirst = 0; nFirst < nColumns; ++nFirst) {
    if (!isClipped(nFirst)) continue;
    int nEnd = nFirst + 1;
    while (nEnd < nColumns && isClipped(nEnd)) ++nEnd;
    const double dX = ColumnX(scene, nFirst);
    // Two pixels are seen where one would not be.
    const double dWidth = std::max(nEnd - nFirst, std::min(2, nColumns - nFirst));
    canvas.Fill(S_Box{dX, panel.dY, dWidth, dMark}, scene.theme.clipped);
    canvas.Fill(S_Box{dX, panel.Bottom() - dMark, dWidth, dMark}, scene.theme.clipped);
    nFirst = nEnd;
  }
}

}  // namespace

double WaveY(const S_Box& panel, double dAmplitude) {
  return panel.dY + (1.0 - dAmplitude) / 2 * panel.dHeight;
}

void DrawWave(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel,
              const C_WaveMeter* pWave) {
  canvas.Fill(panel, scene.theme.panel);
  DrawRanges(canvas, scene, panel);
  if (scene.options.bAxes) DrawGrid(canvas, scene, panel);
  if (pWave == nullptr) return;
  if (pWave->Samples().empty()) {
    DrawColumns(canvas, scene, panel, *pWave);
  } else {
    DrawSamples(canvas, scene, panel, *pWave);
  }
  DrawClipping(canvas, scene, panel, *pWave);
}

}  // namespace tool
