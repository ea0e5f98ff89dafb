// SPDX-License-Identifier: Apache-2.0
//
// A file that is read at positions. Small reads come from two windows of the file in memory, so
// that a file whose facts lie close together is opened, looked at and closed with very few calls of
// the system. The first window stays where the first small read was, which is the beginning of most
// files; the other one moves. Large reads go straight to where the caller wants the bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

#include "StdioFile.h"

namespace vcm {

class C_FileReader {
 public:
  C_FileReader() = default;
  // Owns the file; null counts as a closed one.
  explicit C_FileReader(C_FilePtr file);
  // Borrows the file. Its own position does not matter, and reading does not move it. (Only of a
  // stream without a file of the system, as fmemopen makes it, measuring and reading do.)
  explicit C_FileReader(std::FILE* pFile);
  C_FileReader(const C_FileReader&) = delete;
  C_FileReader& operator=(const C_FileReader&) = delete;

  [[nodiscard]] bool IsOpen() const noexcept { return m_pFile != nullptr; }
  void Close() noexcept;

  // The length of the file when the reader was made, or when Measure was called last. Empty when
  // the file has no length (directories, pipes) or when the system does not tell.
  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept { return m_qwLength; }
  // Asks for the length again.
  std::optional<std::uint64_t> Measure() noexcept;

  // Whether the file system knows such a position, which may lie beyond the end of the file. Empty
  // when the file cannot be asked: that says nothing about the position. Moves the position of the
  // file itself.
  [[nodiscard]] std::optional<bool> CanBeAt(std::uint64_t qwPosition) noexcept;

  // Reads as many bytes as the file has from qwPosition on, up to bytes.size(), and returns their
  // number. Empty when they cannot be read: a number below bytes.size() always means that the file
  // ends there.
  [[nodiscard]] std::optional<std::size_t> ReadSome(std::uint64_t qwPosition,
                                                    std::span<std::uint8_t> bytes) noexcept;
  // True when all bytes were read.
  [[nodiscard]] bool ReadExact(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) noexcept;

 private:
  static constexpr std::size_t kWindow = 4096;

  struct S_Window {
    // The bytes that it holds from a position of the file on.
    [[nodiscard]] std::span<const std::uint8_t> From(std::uint64_t qwAt) const noexcept;

    std::uint64_t qwPosition = 0;
    std::size_t cbHeld = 0;
    std::array<std::uint8_t, kWindow> bytes;
  };

  // Whether the file is known to end at a position, or before it.
  [[nodiscard]] bool IsEnd(std::uint64_t qwPosition) const noexcept;
  std::optional<std::size_t> ReadFile(std::uint64_t qwPosition,
                                      std::span<std::uint8_t> bytes) noexcept;

  C_FilePtr m_owned;
  std::FILE* m_pFile = nullptr;
  std::optional<std::uint64_t> m_qwLength;
  S_Window m_first;
  S_Window m_moving;
};

}  // namespace vcm
