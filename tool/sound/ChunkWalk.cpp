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

}  // namespace

bool CutsChunk(C_FileBytes& bytes, const S_ChunkLayout& layout) {
  const auto qwLength = static_cast<std::uint64_t>(bytes.Length());
  std::uint64_t qwAt = layout.qwFirst;
  for (int n = 0; n < kMostChunks && qwAt + layout.nHead <= qwLength; ++n) {
    C_Head head{};
    bytes.Seek(qwAt);
    if (bytes.Read(head.data(), layout.nHead) < static_cast<std::int64_t>(layout.nHead)) break;
    const std::uint64_t qwSize = SizeIn(head, layout);
    if (qwSize >= layout.qwNotSaid) break;
    if (layout.bSizeHasHead && qwSize < layout.nHead) break;
    const std::uint64_t qwEnd = qwAt + qwSize + (layout.bSizeHasHead ? 0 : layout.nHead);
    if (qwEnd > qwLength) return true;
    qwAt = (qwEnd + layout.qwAlign - 1) / layout.qwAlign * layout.qwAlign;
  }
  return false;
}

}  // namespace tool
