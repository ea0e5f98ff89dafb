// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "base/Console.h"
#include "output/OutputDevice.h"

namespace tool {

// Opens what sounds are played on: an output of the machine, or the clock alone where there is none
// or none is wanted.
class C_PlayDevices {
 public:
  // The console outlives the object. Without a name, the default output is meant. Throws C_Failure
  // when the machine has outputs, but none of this name.
  C_PlayDevices(C_Console& console, const std::string& strDevice, bool bSilent);

  // Never null. Says so once, on standard error, when a sound cannot be heard.
  std::unique_ptr<toolbox::I_OutputDevice> Open(const toolbox::S_OutputFormat& format,
                                                toolbox::I_DeviceClient& client);

 private:
  C_Console& m_console;
  std::string m_strDevice;
  bool m_bSilent;
};

// For people: the outputs of the machine, one a line; "" when there are none.
std::string DeviceListText();

}  // namespace tool
