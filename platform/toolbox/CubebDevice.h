// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

#include "OutputDevice.h"

namespace toolbox {

// How long an audio service may take to answer before it counts as absent.
inline constexpr std::chrono::milliseconds kServiceAnswerLimit{5000};

// Opens the machine's default output. Null when there is no service, no device, or no answer within
// `limit`; a service that does not answer holds a helper thread for as long as it is silent.
[[nodiscard]] std::unique_ptr<I_OutputDevice> OpenCubebDevice(
    const S_OutputFormat& format, I_DeviceClient& client,
    std::chrono::milliseconds limit = kServiceAnswerLimit);

}  // namespace toolbox
