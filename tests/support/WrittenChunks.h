// SPDX-License-Identifier: Apache-2.0
//
// The chunks of a RIFF file that the library wrote, by name and payload, in their order.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ByteReader.h"
#include "RiffBytes.h"

inline std::vector<std::pair<std::string, C_Bytes>> ChunksOf(const C_Bytes& file) {
  std::vector<std::pair<std::string, C_Bytes>> chunks;
  vcm::C_ByteReader reader(file);
  reader.Skip(12);
  while (reader.Remaining() > 0) {
    const auto id = reader.Bytes(4);
    const auto payload = reader.Bytes(reader.U32());
    if (!reader.Ok()) break;
    chunks.emplace_back(std::string(id.begin(), id.end()), C_Bytes(payload.begin(), payload.end()));
  }
  EXPECT_TRUE(reader.Ok());
  return chunks;
}

inline std::vector<std::string> ChunkNames(const C_Bytes& file) {
  std::vector<std::string> names;
  for (const auto& [strName, payload] : ChunksOf(file)) names.push_back(strName);
  return names;
}

// The payload of the first chunk with this name.
inline C_Bytes ChunkNamed(const C_Bytes& file, const std::string& strName) {
  for (const auto& [strFound, payload] : ChunksOf(file)) {
    if (strFound == strName) return payload;
  }
  ADD_FAILURE() << "no chunk " << strName;
  return {};
}
