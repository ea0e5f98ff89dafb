// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "base/NewFile.h"

namespace tool {

// Where a changed file goes.
struct S_EditTarget {
  std::string strOutput;  // empty: the file itself; "-": standard output
  bool bForce = false;    // also when the output exists
  bool bAnyway = false;   // also when something is lost
};

// The new file. Throws C_Failure and C_UsageFailure.
std::unique_ptr<I_NewFile> MakeEdited(const std::string& strFile, const S_EditTarget& target);

}  // namespace tool
