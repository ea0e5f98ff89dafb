// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "play/PlaySource.h"

namespace tool {

struct S_PlayStatus {
  std::string strName;
  std::uint32_t dwRate = 1;
  S_PlaySpan span;
  std::uint64_t qwFrame = 0;
  std::uint64_t qwFrames = kFramesUnknown;  // of the whole sound
  bool bPaused = false;
};

// "speech.kst  0:01.250 / 0:05.120  [=====>          ]", in less than nColumns. Where that
// is little room, the bar goes first, then the beginning of the name, all of it, and the length.
std::string StatusLine(const S_PlayStatus& status, std::size_t nColumns);

}  // namespace tool
