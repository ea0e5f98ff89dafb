// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// The content of a regular file; empty when it does not open. It is read in one piece: one byte
// after the other would take most of the time of many tests without the optimiser.
inline std::vector<std::uint8_t> FileBytes(const std::string& strPath) {
  if (!std::filesystem::is_regular_file(strPath)) return {};
  std::ifstream file(strPath, std::ios::binary | std::ios::ate);
  if (!file) return {};
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.tellg()));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}
