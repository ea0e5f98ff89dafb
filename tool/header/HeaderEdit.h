// SPDX-License-Identifier: Apache-2.0
//
// Puts an SP header before a stream, and takes it away. What the new file reads as is compared with
// the old one before it takes its place.
#pragma once

#include <cstdint>
#include <string>

#include "sound/EditTarget.h"

namespace tool {

struct S_HeaderEdit {
  std::string strFile;  // "-" is standard input, which needs an output
  S_EditTarget target;
};

// Throw C_Failure, C_UsageFailure and voxplay::Error; nothing is changed then.

// strCodec is "kestrel", "heron4", "heron5" or "heron6". A rate of 0 stands for 16,000 Hz.
void AddHeader(const S_HeaderEdit& edit, const std::string& strCodec, std::uint32_t dwRate);
void StripHeader(const S_HeaderEdit& edit);

}  // namespace tool
