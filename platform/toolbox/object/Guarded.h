// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/BaseTypes.h>

namespace toolbox {

// Runs the body of a call of the toolbox, which callers in any language make: no exception may
// leave it. What is thrown here is a lack of memory or of threads.
template <typename Body>
OSStatus Guarded(Body body) noexcept {
  try {
    return body();
  } catch (...) {
    return kAudio_MemFullError;
  }
}

}  // namespace toolbox
