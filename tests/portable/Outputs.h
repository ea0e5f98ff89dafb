// SPDX-License-Identifier: Apache-2.0
//
// What the library puts out, each output as a line: its name and a hash of its bytes. The lines are
// the same on every machine.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ByteReader.h"

class C_Outputs {
 public:
  void Add(const std::string& strName, std::span<const std::uint8_t> bytes) {
    std::uint64_t qwHash = 0xCBF29CE484222325U;  // FNV-1a
    for (const std::uint8_t byValue : bytes) qwHash = (qwHash ^ byValue) * 0x100000001B3U;
    std::string strHash;
    for (int nShift = 60; nShift >= 0; nShift -= 4) {
      strHash += "0123456789abcdef"[qwHash >> nShift & 0xFU];
    }
    m_lines.push_back(strName + " " + strHash);
  }
  // Hashes values of 16 bits as little-endian bytes.
  template <typename Values>
  void AddWords(const std::string& strName, const Values& values) {
    vcm::C_ByteWriter writer;
    for (const auto value : values) writer.U16(static_cast<std::uint16_t>(value));
    Add(strName, writer.Data());
  }
  [[nodiscard]] const std::vector<std::string>& Lines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
};

// These throw std::runtime_error, naming the output, when an operation fails.
void AddCoderOutputs(C_Outputs& outputs);
void AddFileOutputs(C_Outputs& outputs);
void AddSoundOutputs(C_Outputs& outputs);
void AddApiOutputs(C_Outputs& outputs);
