// SPDX-License-Identifier: Apache-2.0
//
// What a name stands for that is to be written to, and which file that is after all links.
#pragma once

#include <sys/stat.h>

#include <string>

namespace vcm {

enum class E_TargetKind {
  New,      // nothing has the name yet
  Regular,  // an existing regular file
  Other,    // a folder, a device, a pipe, or a stream that somebody has open
  Unknown,  // it is empty, cannot be looked at, or changes while that is done
};

struct S_TargetName {
  E_TargetKind eKind = E_TargetKind::Unknown;
  // Regular: the path after all links, and the state of the file. The path of anything else is the
  // one that was given.
  std::string strPath;
  struct stat status {};
};

// Another process may replace the file, or change a link, meanwhile; then this looks again, but not
// forever. pszPath must not be null.
[[nodiscard]] S_TargetName LookAtTarget(const char* pszPath);

// For a name of which nothing exists: the path that a link to nothing leads to, or the path itself.
// Empty for links that lead in a circle or cannot be read.
[[nodiscard]] std::string NewPathOf(const char* pszPath);

// Whether an existing file may be written to. This does not change it.
[[nodiscard]] bool IsWritable(const std::string& strPath);

// The path of a file, cut where the name of a replacement beside it would otherwise be too long.
[[nodiscard]] std::string StemBeside(const std::string& strPath);

}  // namespace vcm
