// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "base/Console.h"
#include "options/CommandOptions.h"
#include "tags/MarkedFile.h"

namespace tool {

// What every command takes that changes a file.
struct S_EditOptions {
  std::string strFile;
  S_EditTarget target;
  bool bNamesEvents = false;  // the edit names all events that there are to be
};

// The options, and the operand FILE.
void AddEditOptions(CLI::App& command, S_EditOptions& options);

// Removes all marks from notes. Other chunks stay, and so does what is said of the sampler.
void ClearMarks(voxplay::Notes& notes);
// Removes all loops alone.
void ClearLoops(voxplay::Notes& notes);

// A place or a length as C_Time takes it, which is checked when the options are read.
C_Option AddTimeOption(CLI::App& command, const std::string& strNames, std::string& strTime,
                       const std::string& strMeaning);

// Changes the notes of the file. fnEdit may throw C_BadRow and C_Failure, and then nothing changes.
// Events follow the labels that say them (LabelEvents.h). Complains of those that come in this way,
// and of what the file cannot hold. Returns the exit code.
int EditMarks(const S_EditOptions& options, C_Console& console,
              const std::function<void(const C_MarkedFile& file, voxplay::Notes& notes)>& fnEdit);

}  // namespace tool
