// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "output/OutputDevice.h"

namespace toolbox {

// Opens the machine's default output with the first backend that finds one. Null when no backend
// does, which may take as long as each of them waits for its service.
[[nodiscard]] std::unique_ptr<I_OutputDevice> OpenDefaultDevice(const S_OutputFormat& format,
                                                                I_DeviceClient& client);
// The same for the output of this name, as DeviceList.h lists it.
[[nodiscard]] std::unique_ptr<I_OutputDevice> OpenNamedDevice(const S_OutputFormat& format,
                                                              I_DeviceClient& client,
                                                              const std::string& strDevice);

}  // namespace toolbox
