// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "manifest/Manifest.h"

namespace tool {

struct S_Retry {
  bool bFailed = false;   // everything that has failed
  bool bInWay = false;    // what has failed because its target was there
  bool bSkipped = false;  // what was skipped for that
};

struct S_RetryCounts {
  std::uint64_t qwAgain = 0;    // had failed, and are planned again
  std::uint64_t qwSkipped = 0;  // were skipped, and are planned again
  std::uint64_t qwGone = 0;     // whose sources are gone, so that the manifest has forgotten them
};

// Plans what has failed or was skipped again. Sources that are gone are looked for with bFailed
// only.
S_RetryCounts PlanAgain(C_Manifest& manifest, S_Retry retry);

}  // namespace tool
