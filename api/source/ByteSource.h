// SPDX-License-Identifier: Apache-2.0
//
// The bytes that a reader reads: a file, memory of the caller's, or the caller's functions. All of
// them are read at positions counted from where the sound begins.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "base/Failure.h"
#include "voxplay.h"

namespace api {

// How far a source could be read.
struct S_BytesRead {
  std::size_t cbRead = 0;
  std::optional<C_Failure> failure;  // what stopped it, unless it was the end of the source
};

class I_ByteSource {
 public:
  virtual ~I_ByteSource() = default;

  // Empty when it is not known, which happens only where CanGoBack() is false.
  [[nodiscard]] virtual std::optional<std::uint64_t> Length() const noexcept = 0;
  // False for an input that only goes forward. Positions may then be skipped but not come again,
  // except for those in the first kKeptBytes, as long as nothing beyond these has been read.
  [[nodiscard]] virtual bool CanGoBack() const noexcept = 0;
  // Whether the source can be read from qwPosition on, without a gap after it. A source that cannot
  // go back may still hold what it has just read.
  [[nodiscard]] virtual bool CanReadFrom(std::uint64_t /*qwPosition*/) const noexcept {
    return CanGoBack();
  }
  // Reads as many bytes as there are from qwPosition on, up to bytes.size(), and returns their
  // number: fewer always means that the input ends there. Throws C_Failure when they cannot be
  // read (VOXPLAY_CANNOT_READ), and when the input would have to go back (VOXPLAY_CANNOT_SEEK).
  virtual std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) = 0;
  // The same, but what comes before a failure is read. Sources that cannot go back have to say
  // themselves how far they came; the others are asked again.
  virtual S_BytesRead ReadToFailure(std::uint64_t qwPosition, std::span<std::uint8_t> bytes);
  // The bytes themselves, where they are in memory anyway; otherwise empty. Saves a copy.
  [[nodiscard]] virtual std::span<const std::uint8_t> InMemory() const noexcept { return {}; }

  static constexpr std::size_t kKeptBytes = 65536;
};
using C_ByteSourcePtr = std::unique_ptr<I_ByteSource>;

// Throws C_Failure (VOXPLAY_CANNOT_OPEN) when there is no such regular file that can be read.
C_ByteSourcePtr OpenFileSource(const char* pszPath);
// The bytes are borrowed.
C_ByteSourcePtr OpenMemorySource(std::span<const std::uint8_t> bytes);
// The record is copied. Throws C_Failure when one of its functions fails.
C_ByteSourcePtr OpenInputSource(const voxplay_input& input);

// Reads exactly bytes.size() bytes; false when the source ends before.
bool ReadExact(I_ByteSource& source, std::uint64_t qwPosition, std::span<std::uint8_t> bytes);

// Part of a source.
struct S_ByteRange {
  std::uint64_t qwAt = 0;
  std::uint64_t qwSize = 0;
};
// The range without what comes after the source, if the source tells its length.
S_ByteRange Held(const I_ByteSource& source, S_ByteRange range) noexcept;

}  // namespace api
