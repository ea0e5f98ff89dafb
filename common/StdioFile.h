// SPDX-License-Identifier: Apache-2.0
//
// Owning handles of standard input/output streams, and 64-bit positioning.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>

namespace vcm {

struct S_FileCloser {
  void operator()(std::FILE* pFile) const noexcept { static_cast<void>(std::fclose(pFile)); }
};

// Closes on destruction, whatever the close reports: right for reading. Writers end with
// CloseChecked.
using C_FilePtr = std::unique_ptr<std::FILE, S_FileCloser>;

// VCM_tfopen with an owner. Empty on failure, for a null path, and when reading is asked for of a
// pipe or a device, which is never waited for.
[[nodiscard]] C_FilePtr OpenFile(const char* pszPath, const char* pszMode);

// Closes and reports: a disk that filled up may show only here.
[[nodiscard]] bool CloseChecked(C_FilePtr file) noexcept;

// True when all bytes were read or written.
[[nodiscard]] bool ReadExact(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept;
[[nodiscard]] bool WriteExact(std::FILE* pFile, std::span<const std::uint8_t> bytes) noexcept;

// As many bytes as there are, up to bytes.size().
[[nodiscard]] std::size_t ReadSome(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept;

// Positions are 64-bit on every platform.
[[nodiscard]] bool SeekTo(std::FILE* pFile, std::uint64_t qwPosition) noexcept;
[[nodiscard]] std::optional<std::uint64_t> Tell(std::FILE* pFile) noexcept;

// Size of the file behind the stream; the position is left at its end. Empty when it has none
// (directories, pipes).
[[nodiscard]] std::optional<std::uint64_t> SizeAndSeekEnd(std::FILE* pFile) noexcept;

}  // namespace vcm
