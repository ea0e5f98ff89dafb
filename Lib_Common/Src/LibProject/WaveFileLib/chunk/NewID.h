// SPDX-License-Identifier: Apache-2.0
//
// Lets all annotations of a sound change their cue point identifiers in the same way.
#pragma once

#include <functional>
#include <optional>

namespace vcm {

// Returns the new identifier for an old one, or nothing if whatever carries the old one is to be
// removed.
using C_NewID = std::function<std::optional<unsigned int>(unsigned int dwID)>;

}  // namespace vcm
