// SPDX-License-Identifier: Apache-2.0
//
// The names that the target of a file may have below a folder, from the shortest one to one that no
// other file has: "x.png", "x.wav.png", "day1/x.png", "day1/x.wav.png" and so on, with ever more
// of the path of the source.
#pragma once

#include <string>
#include <string_view>

#include "batch/FileList.h"

namespace tool {

class C_TargetNames {
 public:
  C_TargetNames(std::string strFolder, std::string_view extension);

  // The names are counted from 0. "" after the last one.
  [[nodiscard]] std::string Name(const S_ListedFile& file, unsigned nChoice) const;

 private:
  std::string m_strFolder;
  std::string m_strExtension;
};

// The same file by its plain path.
[[nodiscard]] S_ListedFile PlainFile(const S_ListedFile& file);

}  // namespace tool
