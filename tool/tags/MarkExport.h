// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "base/Console.h"

namespace tool {

enum class tagMarkForm { TABLE, JSON, CSV, LABELS };

struct S_MarkExport {
  std::string strText;
  int nExit = 0;  // 1 when a file failed, about which it has complained
};

// The marks of files: as a table for people, as an array with an object for each file, as one table
// for all of them, or as a label track, which is of one file only (C_UsageFailure).
S_MarkExport ExportMarks(const std::vector<std::string>& files, tagMarkForm eForm,
                         C_Console& console);

}  // namespace tool
