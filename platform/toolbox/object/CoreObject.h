// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace toolbox {

// What every reference that `CFRelease` takes points to. One owner each: nothing shares them.
class C_CoreObject {
 public:
  C_CoreObject() = default;
  virtual ~C_CoreObject() = default;
  C_CoreObject(const C_CoreObject&) = delete;
  C_CoreObject& operator=(const C_CoreObject&) = delete;
};

}  // namespace toolbox
