// SPDX-License-Identifier: Apache-2.0
//
// The blocks of coded audio (Block.h), all bytes after the count of samples, in memory or
// elsewhere. A reader of them takes one view after another.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace heron {

class C_CodedBytes {
 public:
  C_CodedBytes() = default;
  C_CodedBytes(const C_CodedBytes&) = delete;
  C_CodedBytes& operator=(const C_CodedBytes&) = delete;
  virtual ~C_CodedBytes() = default;

  [[nodiscard]] virtual std::uint64_t Size() const noexcept = 0;
  // The bytes from qwAt on, which is at most Size(): nLeast to nMost of them, fewer only at the
  // end. nMost is at most kPiece. The view is valid until the next call. May throw.
  virtual std::span<const std::uint8_t> View(std::uint64_t qwAt, std::size_t nLeast,
                                             std::size_t nMost) = 0;

  static constexpr std::size_t kPiece = 65536;
};

class C_CodedMemory final : public C_CodedBytes {
 public:
  // The bytes are borrowed.
  explicit C_CodedMemory(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

  [[nodiscard]] std::uint64_t Size() const noexcept override { return m_bytes.size(); }
  std::span<const std::uint8_t> View(std::uint64_t qwAt, std::size_t /*nLeast*/,
                                     std::size_t nMost) override {
    const auto rest = m_bytes.subspan(static_cast<std::size_t>(qwAt));
    return rest.first(std::min(rest.size(), nMost));
  }

 private:
  std::span<const std::uint8_t> m_bytes;
};

}  // namespace heron
