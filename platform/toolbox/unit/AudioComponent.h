// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/OutputDevice.h"

namespace toolbox {

// How output units open their device from now on; an empty function restores the machine's device.
// Only for code that tries the toolbox out against a device of its own.
void SetOpenDevice(OpenDeviceFunction open);

}  // namespace toolbox
