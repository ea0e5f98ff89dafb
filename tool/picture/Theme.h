// SPDX-License-Identifier: Apache-2.0
//
// The colours of pictures. They differ in lightness as well as in hue, so that they can be told
// apart in print and by people who do not see all hues.
#pragma once

#include <array>
#include <cstdint>

#include "picture/Canvas.h"

namespace tool {

struct S_Theme {
  S_Colour paper;
  S_Colour panel;  // what waveforms are drawn on
  S_Colour ink;
  S_Colour faint;  // less important texts
  S_Colour grid;
  S_Colour peak;
  S_Colour mean;
  S_Colour clipped;
  S_Colour event;
  S_Colour cue;
  S_Colour silence;
  S_Colour region;
  S_Colour loop;
  S_Colour text;
};

const S_Theme& LightTheme();
const S_Theme& DarkTheme();

// The colours of levels, 0xRRGGBB, from the quietest to the loudest. Equal steps of level are equal
// steps of lightness, away from the paper of the theme.
using S_LevelColours = std::array<std::uint32_t, 256>;
S_LevelColours LevelColours(bool bDark);

}  // namespace tool
