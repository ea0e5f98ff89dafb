// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace tool {

// Something that is written in one go, can be looked at, and appears whole or not at all. Nothing
// is left of it when it did not appear. All operations throw C_Failure and C_Interrupted.
class I_NewFile {
 public:
  virtual ~I_NewFile() = default;

  virtual void Write(std::span<const std::byte> bytes) = 0;
  // Where it stands until it appears, so that what was written can be read.
  [[nodiscard]] virtual const std::string& NewPath() const noexcept = 0;
  // Everything that takes time. It only has to appear after that.
  virtual void BringToDisk() = 0;
  virtual void TakePlace() = 0;
};

}  // namespace tool
