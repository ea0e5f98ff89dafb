// SPDX-License-Identifier: Apache-2.0
//
// How the annotations of a sound change their cue point identifiers together.
#pragma once

#include <functional>
#include <optional>

namespace vcm {

// The new identifier for an old one; empty removes what carries it.
using C_NewID = std::function<std::optional<unsigned int>(unsigned int dwID)>;

}  // namespace vcm
