// SPDX-License-Identifier: Apache-2.0
#include "unit/Unit.h"

#include <cmath>

namespace toolbox {

OSStatus CheckAddress(const S_PropertyAddress& address, AudioUnitScope dwScope) {
  if (address.dwScope != dwScope) return kAudioUnitErr_InvalidScope;
  if (address.dwElement != 0) return kAudioUnitErr_InvalidElement;
  return noErr;
}

bool IsOutputRate(double dRate) noexcept {
  constexpr double kMin = 1000;
  constexpr double kMax = 192000;
  return dRate >= kMin && dRate <= kMax && dRate == std::floor(dRate);
}

}  // namespace toolbox
