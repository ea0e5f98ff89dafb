// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "target/ByteTarget.h"
#include "target/SpoolFile.h"

namespace api {

// Collects bytes in a temporary file, where they can be gone back to.
class C_SpooledTarget final : public I_ByteTarget {
 public:
  // Finish() sends all of it to finished, and finishes that.
  explicit C_SpooledTarget(C_ByteTargetPtr finished);
  // For one who copies it away; Finish() does nothing.
  C_SpooledTarget() = default;

  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  void Write(std::span<const std::uint8_t> bytes) override;
  void WriteAt(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] std::uint64_t Length() const noexcept override { return m_spool.Length(); }
  void Finish() override;

  void CopyTo(I_ByteTarget& target) { m_spool.CopyTo(target); }

 private:
  C_ByteTargetPtr m_finished;
  C_SpoolFile m_spool;
};

}  // namespace api
