// SPDX-License-Identifier: Apache-2.0
#include "play/PlayDevices.h"

#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "output/DefaultDevice.h"
#include "output/DeviceList.h"
#include "output/NullDevice.h"

namespace tool {
namespace {

using toolbox::I_DeviceClient;
using toolbox::I_OutputDevice;
using toolbox::S_DeviceName;
using toolbox::S_OutputFormat;

std::string Lowered(std::string strText) {
  std::ranges::transform(strText, strText.begin(),
                         [](unsigned char by) { return static_cast<char>(std::tolower(by)); });
  return strText;
}

bool Contains(const std::string& strText, const std::string& strPart) {
  return Lowered(strText).find(Lowered(strPart)) != std::string::npos;
}

// What people type is a name, or a part of a name or description that only one device has.
std::string ChosenDevice(const std::string& strWanted) {
  const auto devices = toolbox::ListDevices();
  std::vector<std::string> fitting;
  for (const S_DeviceName& device : devices) {
    if (device.strName == strWanted) return strWanted;
    if (Contains(device.strName, strWanted) || Contains(device.strDescription, strWanted)) {
      fitting.push_back(device.strName);
    }
  }
  if (fitting.size() == 1) return fitting.front();
  if (devices.empty()) return strWanted;
  throw C_Failure("--device " + strWanted,
                  fitting.empty() ? "there is no such output" : "several outputs are called that",
                  "\"voxtool play --list-devices\" lists them");
}

}  // namespace

C_PlayDevices::C_PlayDevices(C_Console& console, const std::string& strDevice, bool bSilent)
    : m_console(console), m_bSilent(bSilent) {
  if (!bSilent && !strDevice.empty()) m_strDevice = ChosenDevice(strDevice);
}

std::unique_ptr<I_OutputDevice> C_PlayDevices::Open(const S_OutputFormat& format,
                                                    I_DeviceClient& client) {
  if (!m_bSilent) {
    auto device = toolbox::OpenNamedDevice(format, client, m_strDevice);
    if (device != nullptr) return device;
    m_console.Complain("no output device; playing silently in real time");
    // A service that does not answer is not asked again for each sound.
    m_bSilent = true;
  }
  return std::make_unique<toolbox::C_NullDevice>(format, client);
}

std::string DeviceListText() {
  std::string strText;
  for (const S_DeviceName& device : toolbox::ListDevices()) {
    strText += device.strName;
    if (device.bDefault) strText += " (default)";
    strText += "\n    " + device.strDescription + "\n";
  }
  return strText;
}

}  // namespace tool
