// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "picture/Canvas.h"
#include "picture/Lettering.h"
#include "picture/Theme.h"
#include "plot/MarkNames.h"
#include "plot/Marks.h"

namespace tool {

// What a colour stands for. Marks are lines in the picture, everything else is an area.
struct S_LegendItem {
  std::string strText;
  S_Colour colour;
  bool bLine = false;
  double dX = 0.0;
  int nRow = 0;
};

class C_Legend {
 public:
  C_Legend(const S_Theme& theme, double dSize);

  void AddMarks(const S_Marks& marks, const S_MarkNames& names);
  // What the waveforms show. Whether there is clipping is known later than the room is needed.
  void AddWaves();
  void AddClipping();

  // Divides the items into rows; returns how many there are.
  int Arrange(const C_Lettering& lettering, double dWidth);
  void Draw(I_Canvas& canvas, double dX, double dY, bool bClipping) const;

 private:
  void Add(const std::string& strText, const S_Colour& colour, bool bLine = false);

  const S_Theme& m_theme;
  double m_dSize;
  std::vector<S_LegendItem> m_items;
  bool m_bClipping = false;  // the last item is that of clipping
};

// The colour of a kind of marks or ranges.
const S_Colour& ColourOf(const S_Theme& theme, tagMarkKind eKind);
const S_Colour& ColourOf(const S_Theme& theme, tagRangeKind eKind);

// How high a row of a legend is, for letters of this size.
inline constexpr double kLegendRow = 1.5;

}  // namespace tool
