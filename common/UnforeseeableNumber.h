// SPDX-License-Identifier: Apache-2.0
//
// Numbers for the names of files that others must not have made already.
#pragma once

namespace vcm {

// A number that nobody can foresee; where the system has none, one of the clock.
[[nodiscard]] unsigned int UnforeseeableNumber() noexcept;

}  // namespace vcm
