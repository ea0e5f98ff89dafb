// SPDX-License-Identifier: Apache-2.0
//
// The options of plot, as they are written.
#pragma once

#include <string>

#include "batch/BatchOptions.h"
#include "plot/PlotOptions.h"

namespace tool {

struct S_PlotArguments {
  S_BatchOptions batch;
  S_TargetOptions target;
  S_PlotOptions options;
  std::string strFormat;
  std::string strSize;
  std::string strFrom;
  std::string strTo;
  std::string strTheme = "light";
  bool bWaveform = false;
  bool bSpectrogram = false;
  bool bNoAxes = false;
};

// The record must outlive the table.
void AddPlotArguments(CLI::App& command, S_PlotArguments& arguments);

// Throws C_UsageFailure for what cannot be meant.
S_PlotOptions PlotOptionsOf(const S_PlotArguments& arguments);

}  // namespace tool
