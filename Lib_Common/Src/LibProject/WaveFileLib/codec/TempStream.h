// SPDX-License-Identifier: Apache-2.0
//
// How a codec reads back what it has written to a temporary file, and hands it to its caller.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "StdioFile.h"
#include "TempFile.h"

namespace tempstream {

// A temporary file after it has been written completely, open for reading from its beginning.
struct S_Written {
  vcm::C_FilePtr file;
  unsigned int dwSize;
};

// Closes the file's stream and opens it again. Empty when not everything reached the disk, when the
// file cannot be opened again, and when its size does not fit in 32 bits.
[[nodiscard]] std::optional<S_Written> Reopen(vcm::C_TempFile& tempFile);

struct S_Bytes {
  std::unique_ptr<unsigned char[]> pbyData;
  unsigned int dwLength = 0;

  [[nodiscard]] std::span<const std::uint8_t> View() const { return {pbyData.get(), dwLength}; }
};

// Everything that the file holds; empty when it cannot be read.
[[nodiscard]] std::optional<S_Bytes> ReadAll(const S_Written& written);

// Everything that the file holds. Empty when Reopen fails, and when the file cannot be read.
[[nodiscard]] std::optional<S_Bytes> ReadBack(vcm::C_TempFile& tempFile);

// Hands the bytes to a caller, who frees *ppbyData with delete[]. False, with both outputs
// unchanged, when bytes is empty.
[[nodiscard]] bool HandOver(std::optional<S_Bytes> bytes, unsigned char** ppbyData,
                            unsigned int* pdwLength);

}  // namespace tempstream
