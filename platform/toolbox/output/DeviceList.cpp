// SPDX-License-Identifier: Apache-2.0
#include "output/DeviceList.h"

#include <memory>

#include "object/Room.h"
#include "output/CubebBackend.h"
#include "output/CubebDevices.h"
#include "output/ServiceCall.h"

namespace toolbox {
namespace {

std::string TextOf(const char* pszText) { return pszText != nullptr ? pszText : ""; }

std::vector<S_DeviceName> NamesOf(const C_CubebDevices& devices) {
  std::vector<S_DeviceName> names;
  for (const cubeb_device_info& device : devices.All()) {
    if (device.state != CUBEB_DEVICE_STATE_ENABLED) continue;
    const bool bDefault = (device.preferred & CUBEB_DEVICE_PREF_MULTIMEDIA) != 0;
    names.push_back({TextOf(device.device_id), TextOf(device.friendly_name), bDefault});
  }
  return names;
}

bool Ask(std::vector<S_DeviceName>& names) {
  NeedRoom();
  const S_CubebFunctions* pCubeb = CubebFunctions();
  cubeb* pContext = nullptr;
  if (pCubeb == nullptr || pCubeb->init(&pContext, "Voxplay", CubebBackend()) != CUBEB_OK) {
    return false;
  }
  const std::unique_ptr<cubeb, decltype(pCubeb->destroy)> context(pContext, pCubeb->destroy);
  names = NamesOf(C_CubebDevices(*pCubeb, pContext));
  return true;
}

}  // namespace

std::vector<S_DeviceName> ListDevices(std::chrono::milliseconds limit) {
  // A call that is left behind keeps what it fills.
  const auto pNames = std::make_shared<std::vector<S_DeviceName>>();
  if (!CallService(limit, [pNames] { return Ask(*pNames); })) return {};
  return *pNames;
}

}  // namespace toolbox
