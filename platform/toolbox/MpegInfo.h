// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "FileDescriptor.h"

namespace toolbox {

struct S_MpegInfo {
  // MPEG frames that carry sound.
  UInt64 qwFrames = 0;
  // Samples of each channel in one MPEG frame: 384, 576 or 1152.
  UInt32 dwSamplesPerFrame = 0;
};

// Scans the whole stream and counts. Empty when no MPEG frame is found.
[[nodiscard]] std::optional<S_MpegInfo> ScanMpeg(const C_FileDescriptor& file);

}  // namespace toolbox
