// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/JsonText.h"
#include "batch/FileWatch.h"
#include "sound/SoundInput.h"
#include "voxplay.hpp"

namespace tool {

// All that is told of a file.
// NOLINTNEXTLINE(bugprone-exception-escape): moving JSON throws nothing.
struct S_SoundReport {
  std::string strPath;
  std::optional<std::uint64_t> qwBytes;  // of a file with a name
  S_SoundInfo info;
  C_Json marks;  // rows (MarkRows.h)
  voxplay::Sampler sampler{};
  std::optional<voxplay::Info> stream;     // the one beside the PCM of a VEF file
  bool bCut = false;                       // the end of the file is missing, as far as that shows
  std::optional<std::uint64_t> qwDamaged;  // when the sound was decoded
};

// Opens a file, and decodes it when bDecodes is true, or throws what opening and reading throw.
S_SoundReport ReportOf(const std::string& strPath, bool bDecodes, C_FileWatch& watch);

}  // namespace tool
