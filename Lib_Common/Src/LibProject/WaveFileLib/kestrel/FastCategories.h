// SPDX-License-Identifier: Apache-2.0
//
// Categorise of Categories.h without searching: each choice is the next of an order that is known
// from the start.
#pragma once

#include "kestrel/Categories.h"

namespace kestrel {

// The same result as Categorise. All indices of the envelope are valid (IsValidEnvelope).
S_Categorisation CategoriseValid(int nAvailableBits, const S_Envelope& envelope,
                                 int nRegions) noexcept;

}  // namespace kestrel
