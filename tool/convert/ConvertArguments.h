// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "batch/BatchOptions.h"
#include "convert/ConvertOptions.h"
#include "convert/TargetFormat.h"

namespace tool {

// The arguments of the command, as they are written.
struct S_ConvertArguments {
  S_BatchOptions batch;
  S_TargetOptions target;
  S_FormatWords format;
  std::uint32_t dwChannel = 0;  // from 1; 0 is none
  bool bMono = false;
  double dGain = 0.0;  // dB
  std::string strNormalize;
  std::string strSilence;
  std::string strRead;
  bool bNoNotes = false;
  std::string strManifest;
  bool bPlanOnly = false;
  bool bRetryFailed = false;
  bool bReclaim = false;
  std::set<std::string> given;  // the options that are there, "gain" and so on
};

// The record must outlive the table.
void AddConvertArguments(CLI::App& command, S_ConvertArguments& arguments);

// Throw C_UsageFailure for what cannot be meant.
[[nodiscard]] S_ConvertOptions ConvertOptionsOf(const S_ConvertArguments& arguments);
// The name of the format: that of --to, or that which the extension of the output means.
[[nodiscard]] std::string FormatNameOf(const S_ConvertArguments& arguments);

}  // namespace tool
