// SPDX-License-Identifier: Apache-2.0
//
// A manifest as several, for machines that cannot work with the same one, and their results as one
// again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "manifest/Manifest.h"

namespace tool {

struct S_Piece {
  std::string strPath;
  std::uint64_t qwFiles = 0;
  std::uint64_t qwBytes = 0;  // of their sources
};

// Writes what is planned into as many manifests as there are pieces, whose paths are given, so that
// each has about the same amount to read, and fills in the rest. A piece appears whole. Throws
// C_Failure when one exists already, unless bReplace is true. Then the results of those that are
// replaced are taken before. The manifest itself is never replaced.
void Split(C_Manifest& manifest, std::vector<S_Piece>& pieces, bool bReplace);

struct S_MergeCounts {
  std::uint64_t qwTaken = 0;    // results that are new
  std::uint64_t qwLeft = 0;     // files that are not done in the piece
  std::uint64_t qwForeign = 0;  // files that only the piece has, which are not taken
};

// Takes the results of a piece. Those of files that have been planned anew since then do not count,
// and nothing that is done becomes undone, so that it may happen again and in any order.
S_MergeCounts Merge(C_Manifest& manifest, const std::string& strPiece);

}  // namespace tool
