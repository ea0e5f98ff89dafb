// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sound/FileBytes.h"

namespace tool {

// How files that are made of chunks are laid out, each with a size in its head.
struct S_ChunkLayout {
  std::uint64_t qwFirst;    // where the first chunk begins
  std::size_t nHead;        // bytes of the head of a chunk
  std::size_t nSizeAt;      // where the size is in it
  std::size_t nSizeBytes;   // of the size
  bool bHighFirst;          // the order of these
  bool bSizeHasHead;        // the size counts the head as well
  std::uint64_t qwAlign;    // chunks begin at multiples of it
  std::uint64_t qwNotSaid;  // sizes from this one on say nothing: programs that could not go back
};

inline constexpr S_ChunkLayout kFormChunks = {12, 8, 4, 4, true, false, 2, 0x7F000000};
inline constexpr S_ChunkLayout kRiffChunks = {12, 8, 4, 4, false, false, 2, 0x7F000000};
inline constexpr S_ChunkLayout kW64Chunks = {40,    24,   16, 8,
                                             false, true, 8,  std::uint64_t{1} << 62U};
inline constexpr S_ChunkLayout kCafChunks = {8, 12, 4, 8, true, false, 1, std::uint64_t{1} << 62U};

// Whether the end of the file cuts a chunk. Where there are a great many, the first ones are asked.
// Moves the position.
bool CutsChunk(C_FileBytes& bytes, const S_ChunkLayout& layout);

struct S_WalkedChunk {
  std::string strID;     // the first four characters
  std::uint64_t qwAt;    // of its content
  std::uint64_t qwSize;  // as the file claims
};

// The first chunk with this identifier of four characters. Moves the position.
std::optional<S_WalkedChunk> FindChunk(C_FileBytes& bytes, const S_ChunkLayout& layout,
                                       std::string_view id);

}  // namespace tool
