// SPDX-License-Identifier: Apache-2.0
#include "plot/Axes.h"

#include <algorithm>
#include <cmath>

#include "measure/SpectrumMeter.h"
#include "picture/Ticks.h"
#include "plot/WavePanel.h"

namespace tool {
namespace {

constexpr double kTick = 4.0;  // pixels
// In letters' heights: from the middle of a letter to its foot, and what texts need.
constexpr double kToFoot = 0.36;
constexpr double kLineOfText = 1.7;
constexpr double kLineOfScale = 2.4;
constexpr double kBetweenTexts = 1.6;
constexpr double kTitleNeeds = 4.0;
constexpr double kMostMoved = 1.2;
constexpr const char* kMinus = "\u2212";

struct S_LevelTick {
  double dAmplitude;
  const char* pszText;
  double dNeeds;  // height of the panel in letters' heights
};
constexpr S_LevelTick kLevelTicks[] = {
    {1.0, "0", 0.0}, {0.0, "\u2212\u221E", 4.0}, {0.5, "\u22126", 7.5}, {0.25, "\u221212", 16.0}};

S_TextStyle Small(const S_Scene& scene, tagTextPlace ePlace) {
  return {.dSize = scene.layout.Letters(), .colour = scene.theme.ink, .ePlace = ePlace};
}

void DrawTick(I_Canvas& canvas, const S_Scene& scene, const S_Box& box) {
  canvas.Fill(box, scene.theme.faint);
}

// A text at the left of a panel. It stays beside the panel, even at its edges.
void DrawAtLeft(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel, double dY,
                const std::string& strText) {
  const double dLetters = scene.layout.Letters();
  const double dHalf = std::min(kToFoot * dLetters, panel.dHeight / 2);
  const double dMiddle = std::clamp(dY, panel.dY + dHalf, panel.Bottom() - dHalf);
  const double dTickY = std::clamp(std::floor(dY), panel.dY, panel.Bottom() - 1);
  DrawTick(canvas, scene, {panel.dX - kTick, dTickY, kTick, 1});
  canvas.Text({panel.dX - kTick - 3, dMiddle + kToFoot * dLetters}, strText,
              Small(scene, TEXT_ENDS));
}

void DrawTitle(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel,
               const std::string& strText) {
  const double dLetters = scene.layout.Letters();
  if (!scene.layout.HasTitles() || panel.dHeight < kTitleNeeds * dLetters) return;
  S_TextStyle style = Small(scene, TEXT_CENTRED);
  style.colour = scene.theme.faint;
  style.bUpwards = true;
  canvas.Text({1.3 * dLetters, panel.dY + panel.dHeight / 2}, strText, style);
}

// So wide that the widest text has room.
double StepOfTime(const S_Scene& scene, double dLast, double dPixelsPerSecond) {
  const double dLetters = scene.layout.Letters();
  double dStep = TimeStep(3 * dLetters / dPixelsPerSecond);
  while (true) {
    const auto widest = TimeTicks(dLast, dLast + dStep * 0.999, dStep);
    const double dText =
        widest.empty() ? 0.0 : scene.lettering.Width(widest.front().strText, dLetters);
    const double dNeeded = (dText + kBetweenTexts * dLetters) / dPixelsPerSecond;
    if (dNeeded <= dStep) return dStep;
    dStep = TimeStep(std::max(dNeeded, dStep * 1.01));
  }
}

// Near the edges of the picture a text is moved a little, so that nothing of it is cut.
void DrawTimeText(I_Canvas& canvas, const S_Scene& scene, S_Point place,
                  const std::string& strText) {
  const double dLetters = scene.layout.Letters();
  const double dHalf = scene.lettering.Width(strText, dLetters) / 2 + 1;
  const double dMost = std::max(dHalf, scene.options.nWidth - dHalf);
  const double dX = std::clamp(place.dX, dHalf, dMost);
  if (std::abs(dX - place.dX) > kMostMoved * dLetters) return;
  canvas.Text({dX, place.dY}, strText, Small(scene, TEXT_CENTRED));
}

std::string LevelText(double dLevel) {
  const auto nLevel = std::lround(std::abs(dLevel));
  return (dLevel < -0.5 ? kMinus : "") + std::to_string(nLevel);
}

}  // namespace

void DrawTimeAxis(I_Canvas& canvas, const S_Scene& scene) {
  const S_Box panels = scene.layout.Panels();
  const double dLetters = scene.layout.Letters();
  const double dFirst = static_cast<double>(scene.part.qwFirst) / scene.dwRate;
  const double dLast = dFirst + static_cast<double>(scene.part.qwCount) / scene.dwRate;
  const double dBase = panels.Bottom() + kTick + 1.1 * dLetters;
  if (scene.part.qwCount > 0) {
    const double dScale = panels.dWidth / (dLast - dFirst);
    for (const S_Tick& tick : TimeTicks(dFirst, dLast, StepOfTime(scene, dLast, dScale))) {
      const double dX = panels.dX + (tick.dValue - dFirst) * dScale;
      DrawTick(canvas, scene,
               {std::min(std::floor(dX), panels.Right() - 1), panels.Bottom(), 1, kTick});
      DrawTimeText(canvas, scene, {dX, dBase}, tick.strText);
    }
  }
  if (!scene.layout.HasTitles()) return;
  S_TextStyle style = Small(scene, TEXT_CENTRED);
  style.colour = scene.theme.faint;
  canvas.Text({panels.dX + panels.dWidth / 2, dBase + 1.5 * dLetters},
              dLast < 3600 ? "time in m:ss" : "time in h:mm:ss", style);
}

void DrawLevelAxis(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel) {
  for (const S_LevelTick& tick : kLevelTicks) {
    if (panel.dHeight < tick.dNeeds * scene.layout.Letters()) continue;
    DrawAtLeft(canvas, scene, panel, WaveY(panel, tick.dAmplitude), tick.pszText);
    if (tick.dAmplitude == 0.0) continue;
    DrawAtLeft(canvas, scene, panel, WaveY(panel, -tick.dAmplitude), tick.pszText);
  }
  DrawTitle(canvas, scene, panel, "dBFS");
}

void DrawFrequencyAxis(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel) {
  const double dMost = scene.dwRate / 2000.0;
  const double dTexts = std::max(panel.dHeight / (kLineOfText * scene.layout.Letters()), 1.0);
  for (const S_Tick& tick : NumberTicks(0.0, dMost, RoundStep(dMost / dTexts))) {
    const double dY = panel.Bottom() - tick.dValue / dMost * panel.dHeight;
    DrawAtLeft(canvas, scene, panel, dY, tick.strText);
  }
  DrawTitle(canvas, scene, panel, "kHz");
}

void DrawColourScale(I_Canvas& canvas, const S_Scene& scene, const S_LevelColours& colours) {
  const double dLetters = scene.layout.Letters();
  const S_Box panels = scene.layout.Panels();
  const double dTop = scene.layout.Spectra().front().dY;
  const S_Box box = {std::ceil(panels.Right() + dLetters), dTop, std::ceil(dLetters),
                     panels.Bottom() - dTop};
  S_Image image{static_cast<int>(box.dWidth), static_cast<int>(box.dHeight), {}};
  for (int nRow = 0; nRow < image.nHeight; ++nRow) {
    const double dAt = 1.0 - (nRow + 0.5) / image.nHeight;
    const auto nColour = static_cast<std::size_t>(std::lround(dAt * kLoudestLevel));
    image.pixels.insert(image.pixels.end(), static_cast<std::size_t>(image.nWidth),
                        colours[nColour]);
  }
  canvas.Image({box.dX, box.dY}, image);
  const double dTexts = std::max(box.dHeight / (kLineOfScale * dLetters), 1.0);
  const double dStep = std::max(RoundStep(-kQuietest / dTexts), 10.0);
  for (const S_Tick& tick : NumberTicks(kQuietest, 0.0, dStep)) {
    const double dY = box.dY + tick.dValue / kQuietest * box.dHeight;
    const double dHalf = kToFoot * dLetters;
    const double dMiddle = std::clamp(dY, box.dY + dHalf, box.Bottom() - dHalf);
    canvas.Text({box.Right() + 3, dMiddle + dHalf}, LevelText(tick.dValue),
                Small(scene, TEXT_BEGINS));
  }
  S_TextStyle style = Small(scene, TEXT_CENTRED);
  style.colour = scene.theme.faint;
  style.bUpwards = true;
  canvas.Text({panels.Right() + 6.3 * dLetters, box.dY + box.dHeight / 2}, "dBFS", style);
}

}  // namespace tool
