// SPDX-License-Identifier: Apache-2.0
#include "output/DefaultDevice.h"

#include <array>

#include "output/CubebDevice.h"

namespace toolbox {
namespace {

// Gives OpenCubebDevice, which has another parameter, the form of the list.
std::unique_ptr<I_OutputDevice> OpenCubeb(const S_OutputFormat& format, I_DeviceClient& client,
                                          const std::string& strDevice) {
  return OpenCubebDevice(format, client, kServiceAnswerLimit, strDevice);
}

// Asked in this order.
constexpr std::array kBackends = {&OpenCubeb};

}  // namespace

std::unique_ptr<I_OutputDevice> OpenDefaultDevice(const S_OutputFormat& format,
                                                  I_DeviceClient& client) {
  return OpenNamedDevice(format, client, {});
}

std::unique_ptr<I_OutputDevice> OpenNamedDevice(const S_OutputFormat& format,
                                                I_DeviceClient& client,
                                                const std::string& strDevice) {
  for (const auto pfnOpen : kBackends) {
    if (auto device = pfnOpen(format, client, strDevice)) return device;
  }
  return nullptr;
}

}  // namespace toolbox
