// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "picture/Canvas.h"
#include "picture/Lettering.h"
#include "picture/Theme.h"
#include "plot/Layout.h"
#include "plot/Legend.h"
#include "plot/MarkNames.h"
#include "plot/Marks.h"
#include "plot/Overview.h"
#include "plot/PlotOptions.h"

namespace tool {

// Everything that a picture is drawn from.
struct S_Scene {
  const S_PlotOptions& options;
  const S_Theme& theme;
  const C_Lettering& lettering;
  std::string strTitle;
  std::string strSubtitle;
  std::uint32_t dwRate = 1;
  std::vector<std::string> channelNames;  // empty for a sound of one channel
  S_Part part;
  C_Layout layout;
  S_Marks marks;
  S_MarkNames names;
  C_Legend legend;
  S_Overview overview;
};

// The edges of a range, or a mark, are where its columns are.
inline double ColumnX(const S_Scene& scene, double dColumn) {
  return scene.layout.Left() + dColumn;
}

}  // namespace tool
