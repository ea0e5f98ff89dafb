// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "voxplay.hpp"

namespace tool {

// Kestrel streams begin with the number of bytes that follow.
struct S_StreamClaim {
  std::uint64_t qwClaimed = 0;
  std::uint64_t qwHeld = 0;
};

// What the stream of a file says of itself; empty for a file that has no stream of Kestrel, or has
// it in a chunk, whose size says the same.
std::optional<S_StreamClaim> StreamClaimOf(const std::string& strPath, const voxplay::Info& info);

}  // namespace tool
