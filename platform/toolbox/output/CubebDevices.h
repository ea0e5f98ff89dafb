// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cubeb/cubeb.h>

#include <span>
#include <string>

#include "output/CubebLibrary.h"

namespace toolbox {

// The outputs that the service of a context has now. Asks the service, so it may wait for as long
// as that takes. Empty when it does not answer. The context outlives the list.
class C_CubebDevices {
 public:
  C_CubebDevices(const S_CubebFunctions& functions, cubeb* pContext);
  ~C_CubebDevices();
  C_CubebDevices(const C_CubebDevices&) = delete;
  C_CubebDevices& operator=(const C_CubebDevices&) = delete;

  [[nodiscard]] std::span<const cubeb_device_info> All() const noexcept;
  // Null when there is none of this name.
  [[nodiscard]] const cubeb_device_info* Find(const std::string& strName) const;

 private:
  const S_CubebFunctions& m_functions;
  cubeb* m_pContext;
  cubeb_device_collection m_devices{};
  bool m_bListed;
};

}  // namespace toolbox
