// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "file/FileDescriptor.h"

namespace toolbox {

// Block layout of a WAV file with a block codec, as its format chunk states it.
struct S_WavBlocks {
  UInt16 wFormatTag = 0;
  // Bytes of one block; never 0.
  UInt16 wBlockAlign = 0;
  // Bytes of the data chunk that the file really holds.
  UInt64 qwDataBytes = 0;
};

// Reads the chunk list of a RIFF "WAVE" file, after any ID3 tags. Empty when the file is not one,
// or when it has no data chunk with a usable format chunk before it.
[[nodiscard]] std::optional<S_WavBlocks> ReadWavBlocks(const C_FileDescriptor& file);

}  // namespace toolbox
