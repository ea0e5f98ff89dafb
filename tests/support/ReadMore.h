// SPDX-License-Identifier: Apache-2.0
//
// RIFF files in which the reader finds more than the class library does, as other programs write
// them.
#pragma once

#include <cstdint>
#include <span>

#include "file/WavFileBase.h"
#include "riff/RiffScan.h"

namespace api::test {

// A pad byte that is not zero: the class library takes it for the beginning of the next chunk.
inline bool HasOtherPad(const S_RiffContents& contents, std::span<const std::uint8_t> bytes) {
  for (std::size_t i = 0; i + 1 < contents.chunks.size(); ++i) {
    const S_ByteRange& payload = contents.chunks[i].payload;
    const std::uint64_t qwEnd = payload.qwAt + payload.qwSize;
    const bool bPadded = payload.qwSize % 2 != 0 && qwEnd < bytes.size() &&
                         contents.chunks[i + 1].payload.qwAt == qwEnd + 9;
    if (bPadded && bytes[static_cast<std::size_t>(qwEnd)] != 0) return true;
  }
  return false;
}

// Samples whose size could not be corrected when the file was written.
inline bool HasSizeOfAPipe(const S_RiffContents& contents) {
  if (contents.bToTheEnd) return true;
  const S_FoundChunk* const pData = contents.Find("data");
  return pData != nullptr &&
         pData->payload.qwSize - pData->qwHeld > C_WavFileBase::kMaxMissingBytes;
}

// Whether the class library finds less in these bytes.
inline bool IsReadMoreOf(std::span<const std::uint8_t> bytes) {
  const auto source = OpenMemorySource(bytes);
  const auto contents = ScanRiff(*source);
  return contents && (HasSizeOfAPipe(*contents) || HasOtherPad(*contents, bytes));
}

}  // namespace api::test
