// SPDX-License-Identifier: Apache-2.0
//
// A file that is written from its beginning to its end, and that never costs the user the file that
// had its name before.
//
//   C_TargetFile target(pszPath);
//   if (target.Stream() == nullptr) return false;
//   return target.Commit(WriteEverything(target.Stream()));
//
//   the path names             what happens
//   an existing regular file   The new contents are written beside it (Replacement.h). Commit lets
//                              them take its place, with its mode and, where that is allowed, its
//                              owner. Until then, and on every failure, the old file is intact. A
//                              link stays a link; what it points to is replaced.
//   nothing yet                The file is opened with "wb". A failed write leaves it partial.
//   anything else              The same: a device, a pipe, or a stream that somebody has open and
//                              that a link in /dev stands for.
//
// An existing file is written in place, too, where the folder takes no second file, or where the
// second file must not take the place of the first: in a folder that others share, where the file
// is a mount of its own, and where a file system cannot give it the old mode. A failed write may
// then leave the file partial, because there is no other way to write it. Where there is a second
// file, that one is whole, and it stays beside a first one that may be partial.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "Replacement.h"
#include "StdioFile.h"

namespace vcm {

class C_TargetFile {
 public:
  explicit C_TargetFile(const char* pszPath);

  // Null for a null path, and when the target cannot be opened for writing or looked at. Nothing
  // was changed then.
  [[nodiscard]] std::FILE* Stream() const noexcept;

  // Closes the file; call it once. True when bWritten is true, everything has reached the file, and
  // the file has its name. An existing file is replaced only then.
  [[nodiscard]] bool Commit(bool bWritten);

 private:
  std::string m_strOldFile;  // what the replacement replaces
  struct stat m_oldStatus {};
  std::optional<C_Replacement> m_replacement;
  C_FilePtr m_file;  // without a replacement
};

}  // namespace vcm
