// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace tool {

// What the user says about where pictures go.
struct S_PlotPlaces {
  std::vector<std::string> sources;
  std::string strOut;     // -o
  std::string strFolder;  // -d
  std::string strFormat;  // --format: "png", "svg" or ""
};

// Whether SVG is wanted: by --format, or by the name of the picture. Throws C_UsageFailure for a
// name that does not tell.
bool WantsSvg(const S_PlotPlaces& places);

// A target for each source, in order; "-" is standard output. Throws C_UsageFailure when there is
// none, or when two sources would have the same.
std::vector<std::string> PlotTargets(const S_PlotPlaces& places, bool bSvg);

}  // namespace tool
