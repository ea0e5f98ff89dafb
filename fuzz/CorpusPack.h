// SPDX-License-Identifier: Apache-2.0
//
// A pack: many small inputs in one file, so that the tree does not hold thousands of files. It is
// the length of each input, 4 bytes little-endian, and its bytes, one after the other.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ByteReader.h"

using C_InputBytes = std::vector<std::uint8_t>;

inline std::optional<C_InputBytes> ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return C_InputBytes(std::istreambuf_iterator<char>(file), {});
}

// Empty for a file that is not a pack.
inline std::optional<std::vector<C_InputBytes>> ReadPack(const std::filesystem::path& path) {
  const auto bytes = ReadWholeFile(path);
  if (!bytes) return std::nullopt;
  std::vector<C_InputBytes> inputs;
  vcm::C_ByteReader reader(*bytes);
  while (reader.Remaining() > 0 && reader.Ok()) {
    const auto input = reader.Bytes(reader.U32());
    inputs.emplace_back(input.begin(), input.end());
  }
  if (!reader.Ok()) return std::nullopt;
  return inputs;
}

inline bool WritePack(const std::filesystem::path& path, std::span<const C_InputBytes> inputs) {
  vcm::C_ByteWriter writer;
  for (const C_InputBytes& input : inputs) {
    writer.U32(static_cast<std::uint32_t>(input.size()));
    writer.Bytes(input);
  }
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(writer.Data().data()),
             static_cast<std::streamsize>(writer.Data().size()));
  return static_cast<bool>(file.flush());
}
