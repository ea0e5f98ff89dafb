// SPDX-License-Identifier: Apache-2.0
//
// A source of bytes that a test has. Counts what is asked of it.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "source/ByteSource.h"

namespace api::test {

class C_MemorySourceForTests : public I_ByteSource {
 public:
  explicit C_MemorySourceForTests(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override {
    return m_bytes.size();
  }
  [[nodiscard]] bool CanGoBack() const noexcept override { return true; }
  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    ++m_nReads;
    const auto cbAt = static_cast<std::size_t>(std::min<std::uint64_t>(qwPosition, m_bytes.size()));
    const auto found = std::span<const std::uint8_t>(m_bytes).subspan(cbAt);
    const std::size_t cbRead = std::min(found.size(), bytes.size());
    std::copy_n(found.begin(), cbRead, bytes.begin());
    return cbRead;
  }

  [[nodiscard]] std::size_t ReadCount() const noexcept { return m_nReads; }

 protected:
  [[nodiscard]] std::span<const std::uint8_t> Held() const noexcept { return m_bytes; }

 private:
  std::vector<std::uint8_t> m_bytes;
  std::size_t m_nReads = 0;
};

// Shows its bytes, so that nothing is read.
class C_ShownSource final : public C_MemorySourceForTests {
 public:
  using C_MemorySourceForTests::C_MemorySourceForTests;
  [[nodiscard]] std::span<const std::uint8_t> InMemory() const noexcept override { return Held(); }
};

}  // namespace api::test
