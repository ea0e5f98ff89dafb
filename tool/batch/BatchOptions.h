// SPDX-License-Identifier: Apache-2.0
//
// The options that all commands on many files have. Those that need not all of them take what they
// need.
#pragma once

#include <string>
#include <vector>

#include "batch/FileList.h"
#include "batch/FileReport.h"
#include "batch/Targets.h"
#include "options/CommandOptions.h"

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
  [[nodiscard]] bool AreNamed() const noexcept { return !operands.empty() || !strList.empty(); }
  // Complains of what cannot be listed. With fnTake, files are handed on and not kept. Throws
  // C_UsageFailure when standard input is named more than once.
  // Files in strTargets, and below it, are left out when a folder above it is listed.
  [[nodiscard]] C_FileList List(C_Console& console, const std::string& strTargets = "",
                                PFN_TakeFile fnTake = {}) const;
};
// The record must outlive the table in all of these.
//
// The operands and where else names come from. Unless it says so itself, a command without any is a
// mistake.
inline constexpr const char* kNoFileNamed = "no file is named";
enum class tagNames { NAMES_NEEDED, NAMES_CHECKED_LATER };
void AddFileOptions(CLI::App& command, S_BatchOptions& options, const std::string& strOperand,
                    tagNames eNames = tagNames::NAMES_NEEDED);
void AddThreadsOption(CLI::App& command, S_BatchOptions& options);
// -q and -v, with what they mean to the command.
inline constexpr const char* kQuietMeaning = "show no progress; -qq: say only what fails";
C_Option AddQuietOption(CLI::App& command, S_BatchOptions& options,
                        const std::string& strMeaning = kQuietMeaning);
void AddVerboseOption(CLI::App& command, S_BatchOptions& options, const std::string& strMeaning,
                      const C_Option& quiet);

struct S_TargetOptions {
  std::string strFile;
  std::string strFolder;
  bool bReplace = false;
  bool bSkip = false;

  [[nodiscard]] bool IsMany() const noexcept { return !strFolder.empty(); }
  // Folders are made below that of -d. A folder that -o names and that is missing is a mistake.
  [[nodiscard]] S_TargetRule Rule() const noexcept;
};
void AddTargetOptions(CLI::App& command, S_TargetOptions& options);

}  // namespace tool
