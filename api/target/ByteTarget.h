// SPDX-License-Identifier: Apache-2.0
//
// Where a writer writes: a file that appears whole at its end, or the caller's functions.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "voxplay.h"

namespace api {

class I_ByteTarget {
 public:
  // Abandons what is not finished.
  virtual ~I_ByteTarget() = default;

  // False for an output that only goes forward.
  [[nodiscard]] virtual bool CanGoBack() const noexcept = 0;
  // Appends. Throws C_Failure (VOXPLAY_CANNOT_WRITE), as do the next two.
  virtual void Write(std::span<const std::uint8_t> bytes) = 0;
  // Writes over bytes that were written before; appending goes on at the end after that. Throws
  // C_Failure (VOXPLAY_CANNOT_SEEK) where CanGoBack() is false.
  virtual void WriteAt(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes) = 0;
  // The bytes appended so far.
  [[nodiscard]] virtual std::uint64_t Length() const noexcept = 0;
  // Brings a file to the disk and lets it appear under its name. Call it once, last.
  virtual void Finish() = 0;
};
using C_ByteTargetPtr = std::unique_ptr<I_ByteTarget>;

// Creates an exclusive temporary file beside the name. Throws C_Failure (VOXPLAY_CANNOT_OPEN) when
// that cannot be done, and when the name is that of something other than a regular file.
C_ByteTargetPtr OpenFileTarget(const char* pszPath);
// The record is copied.
C_ByteTargetPtr OpenOutputTarget(const voxplay_output& output);

}  // namespace api
