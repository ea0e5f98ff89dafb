// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

#include "output/OutputDevice.h"

namespace toolbox {

// Opens the machine's default output, or the one of this name (DeviceList.h). Null when there is no
// service, no device, no memory or thread for it, or no answer within `limit`. A device whose
// service is silent for `limit` is lost, and none of its operations takes much longer than that.
// Whatever the service still holds of a lost device stays with a helper thread until the service
// comes back or the process ends.
[[nodiscard]] std::unique_ptr<I_OutputDevice> OpenCubebDevice(
    const S_OutputFormat& format, I_DeviceClient& client,
    std::chrono::milliseconds limit = kServiceAnswerLimit, const std::string& strDevice = {});

}  // namespace toolbox
