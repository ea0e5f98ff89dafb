// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <exception>
#include <optional>

#include "base/Descriptor.h"
#include "voxplay.hpp"

namespace tool {

// Throws C_UsageFailure when standard output is a terminal, which the bytes of files would disturb.
void RefuseTerminal();

// Standard output, as a writer of voxplay.h writes to it: at once, or by way of a private temporary
// file, which can go back.
class C_StandardOutput {
 public:
  explicit C_StandardOutput(bool bAtOnce);
  C_StandardOutput(const C_StandardOutput&) = delete;
  C_StandardOutput& operator=(const C_StandardOutput&) = delete;

  // For a writer that must not outlive this object.
  [[nodiscard]] voxplay_output Record();
  // Sends what is in the temporary file.
  void Finish();
  // Throws what a call of the writer has run into.
  void ThrowFailure() const;

 private:
  int Write(const void* pBytes, std::size_t cbBytes) noexcept;
  int Seek(std::uint64_t qwPosition) noexcept;

  std::optional<C_Descriptor> m_file;
  std::exception_ptr m_failure;
};

}  // namespace tool
