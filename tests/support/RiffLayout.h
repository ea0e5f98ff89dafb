// SPDX-License-Identifier: Apache-2.0
//
// Where the chunks of a RIFF file are.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "ByteReader.h"
#include "RiffBytes.h"

// A chunk of a RIFF file: where its payload begins, and the byte after its end.
struct S_ChunkPlace {
  std::string strName;
  std::size_t nPayload = 0;
  std::size_t nEnd = 0;
};

// The chunks of a whole RIFF file, in order.
inline std::vector<S_ChunkPlace> LayoutOf(const C_Bytes& file) {
  std::vector<S_ChunkPlace> chunks;
  for (std::size_t nAt = 12; nAt + 8 <= file.size(); nAt = chunks.back().nEnd) {
    vcm::C_ByteReader reader(std::span<const std::uint8_t>(file).subspan(nAt));
    const auto id = reader.Bytes(4);
    chunks.push_back({std::string(id.begin(), id.end()), nAt + 8, nAt + 8 + reader.U32()});
  }
  return chunks;
}
