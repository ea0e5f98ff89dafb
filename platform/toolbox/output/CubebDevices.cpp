// SPDX-License-Identifier: Apache-2.0
#include "output/CubebDevices.h"

namespace toolbox {

C_CubebDevices::C_CubebDevices(const S_CubebFunctions& functions, cubeb* pContext)
    : m_functions(functions), m_pContext(pContext) {
  m_bListed =
      m_functions.enumerate_devices(pContext, CUBEB_DEVICE_TYPE_OUTPUT, &m_devices) == CUBEB_OK;
}

C_CubebDevices::~C_CubebDevices() {
  if (m_bListed) m_functions.device_collection_destroy(m_pContext, &m_devices);
}

std::span<const cubeb_device_info> C_CubebDevices::All() const noexcept {
  if (!m_bListed) return {};
  return {m_devices.device, m_devices.count};
}

const cubeb_device_info* C_CubebDevices::Find(const std::string& strName) const {
  for (const cubeb_device_info& device : All()) {
    if (device.device_id != nullptr && strName == device.device_id) return &device;
  }
  return nullptr;
}

}  // namespace toolbox
