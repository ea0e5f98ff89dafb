// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "output/OutputDevice.h"

namespace toolbox {

struct S_DeviceName {
  std::string strName;         // for OpenNamedDevice
  std::string strDescription;  // for people
  bool bDefault = false;
};

// The outputs of the machine that can play now. Empty when there is no service, none that answers
// within the limit, or no memory or thread to ask it.
[[nodiscard]] std::vector<S_DeviceName> ListDevices(
    std::chrono::milliseconds limit = kServiceAnswerLimit);

}  // namespace toolbox
