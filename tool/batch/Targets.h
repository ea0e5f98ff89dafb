// SPDX-License-Identifier: Apache-2.0
//
// The files that are made of others: their names, and what may happen to files that have these
// names already.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "batch/FileList.h"

namespace tool {

enum class tagExisting {
  EXISTING_REFUSED,  // a failure
  EXISTING_SKIPPED,  // taken for the target of an earlier run
  EXISTING_REPLACED,
};

struct S_TargetRule {
  tagExisting eExisting = tagExisting::EXISTING_REFUSED;
  bool bMakeFolders = false;  // that the target is in
};

// Absolute, and the same for all ways to write a path, as far as its text tells.
[[nodiscard]] std::string PlainPath(const std::string& strPath);

using PFN_TargetOf = std::function<std::string(const S_ListedFile& file)>;

// The targets of these files below a folder: of each file the shortest name that no other one
// needs (TargetNames.h).
[[nodiscard]] PFN_TargetOf TargetsBelow(const std::string& strFolder, std::string_view extension,
                                        const std::vector<S_ListedFile>& files);

// Throws C_UsageFailure when two files have the same target, and when the target of one file is
// another one of the files, which would be overwritten before or while it is read.
void RefuseClashes(const std::vector<S_ListedFile>& files, const PFN_TargetOf& fnTargetOf);

// Whether a target may be written now: false when it is to be skipped. Throws C_Failure when it
// is no regular file, and C_TargetInWay when it exists and must not be replaced.
[[nodiscard]] bool MayWrite(const std::string& strTarget, tagExisting eExisting);

// Makes a folder, and those that it is in. Throws C_Failure.
void MakeFolder(const std::string& strFolder);
// Makes the folders that the target is in. Throws C_Failure.
void MakeFoldersOf(const std::string& strTarget);

}  // namespace tool
