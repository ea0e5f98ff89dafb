// SPDX-License-Identifier: Apache-2.0
#include "sound/ChunkWalk.h"

#include <array>

namespace tool {
namespace {

constexpr int kMostChunks = 1000;
constexpr std::size_t kLongestHead = 24;

using C_Head = std::array<std::uint8_t, kLongestHead>;

std::uint64_t SizeIn(const C_Head& head, const S_ChunkLayout& layout) {
  std::uint64_t qwSize = 0;
  for (std::size_t n = 0; n < layout.nSizeBytes; ++n) {
    const std::size_t nAt = layout.bHighFirst ? n : layout.nSizeBytes - 1 - n;
    qwSize = qwSize << 8U | head[layout.nSizeAt + nAt];
  }
  return qwSize;
}

S_WalkedChunk ChunkAt(std::uint64_t qwAt, const C_Head& head, const S_ChunkLayout& layout) {
  constexpr std::size_t kIDBytes = 4;
  const std::uint64_t qwCounted = layout.bSizeHasHead ? layout.nHead : 0;
  return {std::string(head.begin(), head.begin() + kIDBytes), qwAt + layout.nHead,
          SizeIn(head, layout) - qwCounted};
}

// Calls fnChunk for each chunk, as far as it returns true. One whose size says nothing is the last.
template <typename Work>
void WalkChunks(C_FileBytes& bytes, const S_ChunkLayout& layout, Work&& fnChunk) {
  const auto qwLength = static_cast<std::uint64_t>(bytes.Length());
  std::uint64_t qwAt = layout.qwFirst;
  for (int n = 0; n < kMostChunks && qwAt + layout.nHead <= qwLength; ++n) {
    C_Head head{};
    bytes.Seek(qwAt);
    if (bytes.Read(head.data(), layout.nHead) < static_cast<std::int64_t>(layout.nHead)) return;
    const std::uint64_t qwSize = SizeIn(head, layout);
    if (layout.bSizeHasHead && qwSize < layout.nHead) return;
    const S_WalkedChunk chunk = ChunkAt(qwAt, head, layout);
    if (!fnChunk(chunk, qwSize < layout.qwNotSaid) || qwSize >= layout.qwNotSaid) return;
    const std::uint64_t qwEnd = chunk.qwAt + chunk.qwSize;
    qwAt = (qwEnd + layout.qwAlign - 1) / layout.qwAlign * layout.qwAlign;
  }
}

}  // namespace

bool CutsChunk(C_FileBytes& bytes, const S_ChunkLayout& layout) {
  const auto qwLength = static_cast<std::uint64_t>(bytes.Length());
  bool bCuts = false;
  WalkChunks(bytes, layout, [&](const S_WalkedChunk& chunk, bool bSaysSize) {
    bCuts = bSaysSize && chunk.qwAt + chunk.qwSize > qwLength;
    return !bCuts;
  });
  return bCuts;
}

std::optional<S_WalkedChunk> FindChunk(C_FileBytes& bytes, const S_ChunkLayout& layout,
                                       std::string_view id) {
  std::optional<S_WalkedChunk> found;
  WalkChunks(bytes, layout, [&](const S_WalkedChunk& chunk, bool) {
    if (chunk.strID == id) found = chunk;
    return !found;
  });
  return found;
}

}  // namespace tool
