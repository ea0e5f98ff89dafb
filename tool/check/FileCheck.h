// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "base/JsonText.h"
#include "batch/FileWatch.h"

namespace tool {

// What a file is found to be.
enum class tagVerdict {
  GOOD,
  DAMAGED,  // frames are damaged, or the bytes contradict themselves
  CUT,      // there is less than the file claims
  UNKNOWN,  // none of the known formats, or a kind of one that is not supported
  UNREADABLE
};

struct S_FileCheck {
  std::string strPath;
  tagVerdict eVerdict = tagVerdict::GOOD;
  std::string strWhy;  // "3 of 400 frames"; empty for a good file
  std::string strFormat;
  std::uint32_t dwRate = 0;
  std::uint64_t qwFrames = 0;  // that could be read, damaged ones included
  std::uint64_t qwDamaged = 0;
};

// Decodes every frame of a file, and of the stream beside the PCM of a VEF file, and compares what
// the file claims with what is there. Throws C_Interrupted.
S_FileCheck CheckFile(const std::string& strPath, C_FileWatch& watch);

// "speech.kst: good", "speech.kst: damaged: 3 of 400 frames".
std::string CheckText(const S_FileCheck& check);
C_Json CheckJson(const S_FileCheck& check);

}  // namespace tool
