// SPDX-License-Identifier: Apache-2.0
#include "picture/Theme.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tool {
namespace {

constexpr S_Theme kLight = {
    .paper = {255, 255, 255},
    .panel = {247, 248, 250},
    .ink = {28, 30, 34},
    .faint = {92, 98, 108},
    .grid = {216, 220, 226},
    .peak = {122, 166, 214},
    .mean = {30, 92, 160},
    .clipped = {204, 34, 34},
    .event = {196, 78, 0},
    .cue = {116, 44, 158},
    .silence = {120, 126, 136},
    .region = {226, 150, 0},
    .loop = {0, 128, 94},
    .text = {116, 44, 158},
};

constexpr S_Theme kDark = {
    .paper = {22, 24, 29},
    .panel = {31, 34, 41},
    .ink = {233, 236, 240},
    .faint = {164, 171, 182},
    .grid = {66, 71, 82},
    .peak = {64, 116, 172},
    .mean = {142, 196, 246},
    .clipped = {255, 92, 80},
    .event = {255, 160, 74},
    .cue = {206, 156, 250},
    .silence = {146, 152, 164},
    .region = {246, 196, 68},
    .loop = {72, 214, 168},
    .text = {206, 156, 250},
};

// A path through the colours from quiet to loud: lightness and hue change evenly, and the colour is
// strongest in the middle.
struct S_Path {
  double dLightness;  // of the quietest, 0 to 1
  double dLightnessStep;
  double dHue;  // degrees
  double dHueStep;
  double dStrength;
};
constexpr S_Path kLightPath = {0.985, -0.79, 110.0, 175.0, 0.125};
constexpr S_Path kDarkPath = {0.19, 0.79, 275.0, 190.0, 0.155};

// The gamma of screens.
std::uint32_t Shade(double dLinear) {
  constexpr double kMost = 255.0;
  const double d = std::clamp(dLinear, 0.0, 1.0);
  const double dShade = d <= 0.0031308 ? 12.92 * d : 1.055 * std::pow(d, 1 / 2.4) - 0.055;
  return static_cast<std::uint32_t>(std::lround(dShade * kMost));
}

double Cube(double d) { return d * d * d; }

// From Oklab, a colour space in which equal distances look equal.
std::uint32_t FromOklab(double dL, double dA, double dB) {
  const double dLong = Cube(dL + 0.3963377774 * dA + 0.2158037573 * dB);
  const double dMiddle = Cube(dL - 0.1055613458 * dA - 0.0638541728 * dB);
  const double dShort = Cube(dL - 0.0894841775 * dA - 1.2914855480 * dB);
  const double dRed = 4.0767416621 * dLong - 3.3077115913 * dMiddle + 0.2309699292 * dShort;
  const double dGreen = -1.2684380046 * dLong + 2.6097574011 * dMiddle - 0.3413193965 * dShort;
  const double dBlue = -0.0041960863 * dLong - 0.7034186147 * dMiddle + 1.7076147010 * dShort;
  return Shade(dRed) << 16U | Shade(dGreen) << 8U | Shade(dBlue);
}

std::uint32_t ColourAt(const S_Path& path, double dAt) {
  const double dLightness = path.dLightness + path.dLightnessStep * dAt;
  const double dHue = (path.dHue + path.dHueStep * dAt) * std::numbers::pi / 180.0;
  const double dStrength = path.dStrength * std::sin(std::numbers::pi * std::pow(dAt, 0.8));
  return FromOklab(dLightness, dStrength * std::cos(dHue), dStrength * std::sin(dHue));
}

}  // namespace

const S_Theme& LightTheme() { return kLight; }
const S_Theme& DarkTheme() { return kDark; }

S_LevelColours LevelColours(bool bDark) {
  S_LevelColours colours{};
  for (std::size_t n = 0; n < colours.size(); ++n) {
    const double dAt = static_cast<double>(n) / static_cast<double>(colours.size() - 1);
    colours[n] = ColourAt(bDark ? kDarkPath : kLightPath, dAt);
  }
  return colours;
}

}  // namespace tool
