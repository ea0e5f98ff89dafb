// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "base/Descriptor.h"
#include "base/NewFile.h"

namespace tool {

// Keeps other programs of ours from changing a file that this one is about to replace, until the
// object ends. What others do to the file meanwhile is seen before it is replaced.
class C_FileLock {
 public:
  // Waits until nobody else has the file locked. A file that cannot be opened, or that its file
  // system cannot lock, is not locked. Throws C_Interrupted.
  explicit C_FileLock(std::string strPath);

  // Throws C_Failure when the file is another one now, or has changed.
  void CheckUnchanged() const;

 private:
  [[nodiscard]] bool IsStillThere();

  std::string m_strPath;
  C_Descriptor m_file{-1};
  struct stat m_status {};
};

// Lets a new file take the place of the one that is locked, if any. Looks at that as late as it
// can. Throws C_Failure when it has changed, and what the new file throws.
void TakePlaceOf(const std::optional<C_FileLock>& lock, I_NewFile& made);

}  // namespace tool
