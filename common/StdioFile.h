// SPDX-License-Identifier: Apache-2.0
//
// Owning handles for standard input/output streams, and 64-bit positioning.
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

// Closes the stream on destruction and ignores what the close reports, which is right for reading.
// Writers end with CloseChecked.
using C_FilePtr = std::unique_ptr<std::FILE, S_FileCloser>;

// Opens a file with VCM_tfopen and owns it. Empty on failure and for a null path. Also empty when a
// pipe or a device is to be opened for reading, so the program never waits for one.
[[nodiscard]] C_FilePtr OpenFile(const char* pszPath, const char* pszMode);

// Closes the stream and reports success. A full disk may show up only here.
[[nodiscard]] bool CloseChecked(C_FilePtr file) noexcept;
// The same once everything is on the disk, where there is one.
[[nodiscard]] bool CloseOnDisk(C_FilePtr file) noexcept;

// True when all bytes were read or written.
[[nodiscard]] bool ReadExact(std::FILE* pFile, std::span<std::uint8_t> bytes) noexcept;
[[nodiscard]] bool WriteExact(std::FILE* pFile, std::span<const std::uint8_t> bytes) noexcept;

// Reads as many bytes as the file has left, up to bytes.size(), and returns their number. Empty
// when they cannot be read: a number below bytes.size() always means that the file ends there.
[[nodiscard]] std::optional<std::size_t> ReadSome(std::FILE* pFile,
                                                  std::span<std::uint8_t> bytes) noexcept;

// True when the file ends at the stream's position, as opposed to a file that cannot be read on. Of
// pipes and of streams in memory, that is known only once a read has met the end.
[[nodiscard]] bool IsAtEnd(std::FILE* pFile) noexcept;

// Copies pFrom from its position to its end. False when it cannot be read to its end, and when not
// everything could be written.
[[nodiscard]] bool CopyRest(std::FILE* pFrom, std::FILE* pTo) noexcept;

// Positions are 64-bit on every platform. Where a position cannot exist, SeekTo leaves EINVAL in
// errno.
[[nodiscard]] bool SeekTo(std::FILE* pFile, std::uint64_t qwPosition) noexcept;
[[nodiscard]] std::optional<std::uint64_t> Tell(std::FILE* pFile) noexcept;

// The size of the stream's file; leaves the position at the end. Empty when the file has no size
// (directories, pipes).
[[nodiscard]] std::optional<std::uint64_t> SizeAndSeekEnd(std::FILE* pFile) noexcept;

}  // namespace vcm
