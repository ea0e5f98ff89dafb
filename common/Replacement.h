// SPDX-License-Identifier: Apache-2.0
//
// The new version of a file. It is written beside the old file, under a name of its own, and takes
// the old file's place in one step. The old file is intact until then. A file whose name nothing
// has yet is made in the same way.
#pragma once

#include <sys/stat.h>

#include <string>

#include "StdioFile.h"
#include "UnforeseeableNumber.h"

namespace vcm {

class C_Replacement {
 public:
  // The longest end of a name, ".ffffffff".
  static constexpr std::size_t kNumberLength = 9;

  // Creates the new file: exclusively, with mode 0600, as "%s.%x" of the stem, which is the old
  // file's path, and a number. No such name has the extension of a sound.
  explicit C_Replacement(const std::string& strStem,
                         unsigned int (*pfnNumber)() = UnforeseeableNumber);
  // The same with another mode, of which the process's mask takes its bits: what the file gets that
  // no old file gives its mode to.
  C_Replacement(const std::string& strStem, unsigned int dwMode, unsigned int (*pfnNumber)());
  // Removes the new file, unless it has taken the old file's place or is to be kept.
  ~C_Replacement();
  C_Replacement(const C_Replacement&) = delete;
  C_Replacement& operator=(const C_Replacement&) = delete;

  // The open stream ("w+b"). Null when the file could not be created; Error() then says why.
  [[nodiscard]] std::FILE* Stream() const noexcept { return m_file.get(); }
  // An errno value: why the creation, the mode or the rename failed; 0 otherwise.
  [[nodiscard]] int Error() const noexcept { return m_nError; }
  [[nodiscard]] const std::string& Path() const noexcept { return m_strPath; }

  // Gives the new file the mode of the old one, its access-control list where the system has them,
  // and its owner and group where that is allowed. When the list cannot be set, the group may do
  // what others may. Write nothing after this call. False when not everything has reached the file,
  // and when the mode cannot be set.
  [[nodiscard]] bool TakeOwnerAndMode(const struct stat& old, const std::string& strOldFile);
  // Brings the new file to the disk, closes it and renames it to strOldFile. On failure the old
  // file is as it was, and the new one is removed on destruction.
  [[nodiscard]] bool TakePlaceOf(const std::string& strOldFile);
  // The same for a name that nothing has. False, with EEXIST for Error(), when something has got it
  // in the meantime. That stays as it is, and if Stream() is not null, the functions above or this
  // one may still be called.
  [[nodiscard]] bool TakeNewName(const std::string& strNewFile);
  // Brings the new file to the disk and closes it, unless that was done before.
  [[nodiscard]] bool CloseOnDisk();
  // Leaves the new file where it is, under the name of its own.
  void Keep() noexcept { m_strPath.clear(); }

 private:
  std::string m_strPath;
  C_FilePtr m_file;
  int m_nError = 0;
  bool m_bOnDisk = false;
};

}  // namespace vcm
