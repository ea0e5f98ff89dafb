// SPDX-License-Identifier: Apache-2.0
//
// An output of the caller's: every piece goes straight to the caller's functions.
#include <cstdint>
#include <memory>
#include <span>

#include "base/Failure.h"
#include "target/ByteTarget.h"

namespace api {
namespace {

class C_OutputTarget final : public I_ByteTarget {
 public:
  explicit C_OutputTarget(const voxplay_output& output) : m_output(output) {}

  [[nodiscard]] bool CanGoBack() const noexcept override { return m_output.seek != nullptr; }
  void Write(std::span<const std::uint8_t> bytes) override {
    Send(bytes);
    m_qwLength += bytes.size();
  }
  void WriteAt(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes) override {
    if (!CanGoBack()) throw C_Failure(VOXPLAY_CANNOT_SEEK, "output: it only goes forward");
    MoveTo(qwPosition);
    Send(bytes);
    MoveTo(m_qwLength);
  }
  [[nodiscard]] std::uint64_t Length() const noexcept override { return m_qwLength; }
  void Finish() override {}

 private:
  void Send(std::span<const std::uint8_t> bytes) {
    if (bytes.empty() || m_output.write(m_output.user, bytes.data(), bytes.size()) == 0) return;
    throw C_Failure(VOXPLAY_CANNOT_WRITE, "output: the function that writes has failed");
  }
  void MoveTo(std::uint64_t qwPosition) {
    if (m_output.seek(m_output.user, qwPosition) == 0) return;
    throw C_Failure(VOXPLAY_CANNOT_WRITE, "output: the function that moves has failed");
  }

  voxplay_output m_output;
  std::uint64_t m_qwLength = 0;
};

}  // namespace

C_ByteTargetPtr OpenOutputTarget(const voxplay_output& output) {
  if (output.write == nullptr) {
    throw C_Failure(VOXPLAY_BAD_ARGUMENT, "output: there is no function that writes");
  }
  return std::make_unique<C_OutputTarget>(output);
}

}  // namespace api
