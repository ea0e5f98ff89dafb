// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/FileLock.h"
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

// Whether the file itself is replaced, by whatever name.
bool IsInPlace(const std::string& strFile, const S_EditTarget& target);
// The lock of a file that is edited in place; to be taken before it is read.
std::optional<C_FileLock> LockEdited(const std::string& strFile, const S_EditTarget& target);

}  // namespace tool
