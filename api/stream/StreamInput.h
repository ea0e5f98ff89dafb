// SPDX-License-Identifier: Apache-2.0
//
// How streams read their source: up to the byte that cannot be read, so that all frames before it
// are returned. What stopped them is kept here, and thrown when the frames after it are asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Failure.h"
#include "source/ByteSource.h"

namespace api {

class C_StreamInput {
 public:
  // The source is borrowed.
  explicit C_StreamInput(I_ByteSource& source) noexcept : m_source(source) {}

  // These bytes where the source has all of them in memory, and nothing otherwise.
  [[nodiscard]] std::span<const std::uint8_t> InMemory(std::uint64_t qwAt,
                                                       std::size_t cbBytes) const noexcept;
  // Reads as many bytes as there are, up to bytes.size(), and returns their number. When it is
  // less, either the source ends there, or it cannot be read there: Failed() tells.
  std::size_t Read(std::uint64_t qwAt, std::span<std::uint8_t> bytes);
  [[nodiscard]] bool Failed() const noexcept { return m_failure.has_value(); }
  // Throws what stopped a Read, once.
  void ThrowFailure();
  // Stops here because of something else.
  void Fail(const C_Failure& failure) { m_failure = failure; }
  void ForgetFailure() noexcept { m_failure.reset(); }
  // Throws C_Failure where the source would have to go back to qwAt, and cannot.
  void CheckWayBack(std::uint64_t qwAt) const;

 private:
  I_ByteSource& m_source;
  std::optional<C_Failure> m_failure;
};

}  // namespace api
