// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace toolbox {

// The base of everything that `CFRelease` takes. Each object has one owner; nothing is shared.
class C_CoreObject {
 public:
  C_CoreObject() = default;
  virtual ~C_CoreObject() = default;
  C_CoreObject(const C_CoreObject&) = delete;
  C_CoreObject& operator=(const C_CoreObject&) = delete;
};

}  // namespace toolbox
