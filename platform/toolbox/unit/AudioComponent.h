// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/OutputDevice.h"

namespace toolbox {

// Sets how output units made from now on open their device; an empty function restores the
// machine's device. Only for code that tests the toolbox with a device of its own.
void SetOpenDevice(OpenDeviceFunction open);

}  // namespace toolbox
