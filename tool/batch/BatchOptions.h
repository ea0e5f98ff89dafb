// SPDX-License-Identifier: Apache-2.0
//
// The options that all commands on many files have.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "batch/FileList.h"
#include "batch/FileReport.h"
#include "batch/Targets.h"

namespace tool {

struct S_BatchOptions {
  std::vector<std::string> operands;
  bool bFolders = false;
  std::string strList;
  bool bZeros = false;
  unsigned nThreads = 0;
  int nQuiet = 0;
  bool bVerbose = false;

  [[nodiscard]] tagTalk Talk() const noexcept;
  // Throws C_UsageFailure when no file is named at all.
  void CheckNamed() const;
  [[nodiscard]] bool AreNamed() const noexcept { return !operands.empty() || !strList.empty(); }
  // Complains of what cannot be listed. With fnTake, files are handed on and not kept.
  [[nodiscard]] C_FileList List(C_Console& console, PFN_TakeFile fnTake = {}) const;
};
// The record must outlive the table.
void AddBatchOptions(CLI::App& command, S_BatchOptions& options);

struct S_TargetOptions {
  std::string strFile;
  std::string strFolder;
  bool bReplace = false;
  bool bSkip = false;

  // Folders are made below that of -d. A folder that -o names and that is missing is a mistake.
  [[nodiscard]] S_TargetRule Rule() const noexcept;
};
void AddTargetOptions(CLI::App& command, S_TargetOptions& options);

}  // namespace tool
