// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "base/CopyTo.h"
#include "source/ByteSource.h"

namespace api {
namespace {

class C_MemorySource final : public I_ByteSource {
 public:
  explicit C_MemorySource(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override {
    return m_bytes.size();
  }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (qwPosition >= m_bytes.size()) return 0;
    const auto rest = m_bytes.subspan(static_cast<std::size_t>(qwPosition));
    const auto part = rest.first(std::min(rest.size(), bytes.size()));
    CopyTo(part, bytes);
    return part.size();
  }
  [[nodiscard]] std::span<const std::uint8_t> InMemory() const noexcept override { return m_bytes; }

 private:
  std::span<const std::uint8_t> m_bytes;
};

}  // namespace

C_ByteSourcePtr OpenMemorySource(std::span<const std::uint8_t> bytes) {
  return std::make_unique<C_MemorySource>(bytes);
}

}  // namespace api
