// SPDX-License-Identifier: Apache-2.0
#include "UnforeseeableNumber.h"

#include <unistd.h>

#include <chrono>

namespace vcm {

unsigned int UnforeseeableNumber() noexcept {
  unsigned int dwNumber = 0;
  // The clock will do, because such files are created exclusively.
  if (getentropy(&dwNumber, sizeof(dwNumber)) == 0) return dwNumber;
  return static_cast<unsigned int>(std::chrono::steady_clock::now().time_since_epoch().count());
}

}  // namespace vcm
