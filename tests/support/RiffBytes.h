// SPDX-License-Identifier: Apache-2.0
//
// Builds RIFF files in memory, with false claims where a test needs them:
//   C_RiffBytes("WAVE").Chunk("cue ", 0xFFFFFFFFu, {1, 0}).Take()
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "ByteReader.h"

using C_Bytes = std::vector<std::uint8_t>;

// Characters as bytes: Ascii("adtl").
inline C_Bytes Ascii(std::string_view text) { return {text.begin(), text.end()}; }

inline C_Bytes U16(std::uint16_t wValue) {
  vcm::C_ByteWriter writer;
  writer.U16(wValue);
  return writer.Take();
}

inline C_Bytes U32(std::uint32_t dwValue) {
  vcm::C_ByteWriter writer;
  writer.U32(dwValue);
  return writer.Take();
}

// The parts, one after the other: Join({Ascii("adtl"), U32(7)}).
inline C_Bytes Join(std::initializer_list<C_Bytes> parts) {
  C_Bytes all;
  for (const C_Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// One chunk, header and payload, without pad byte. The header says dwClaimed.
inline C_Bytes ChunkBytes(std::string_view id, std::uint32_t dwClaimed, const C_Bytes& payload) {
  return Join({Ascii(id), U32(dwClaimed), payload});
}
inline C_Bytes ChunkBytes(std::string_view id, const C_Bytes& payload) {
  return ChunkBytes(id, static_cast<std::uint32_t>(payload.size()), payload);
}

class C_RiffBytes {
 public:
  explicit C_RiffBytes(std::string_view formType) : m_formType(formType) {}

  // A chunk whose header tells the truth. No pad byte is added.
  C_RiffBytes& Chunk(std::string_view id, const C_Bytes& payload) {
    return Raw(ChunkBytes(id, payload));
  }
  // A chunk whose header says dwClaimed, whatever the payload.
  C_RiffBytes& Chunk(std::string_view id, std::uint32_t dwClaimed, const C_Bytes& payload) {
    return Raw(ChunkBytes(id, dwClaimed, payload));
  }
  C_RiffBytes& Zeros(std::size_t cbCount) { return Raw(C_Bytes(cbCount)); }
  C_RiffBytes& Raw(const C_Bytes& bytes) {
    m_body.insert(m_body.end(), bytes.begin(), bytes.end());
    return *this;
  }
  // The RIFF header says dwClaimed instead of the true size.
  C_RiffBytes& RiffSize(std::uint32_t dwClaimed) {
    m_dwClaimed = dwClaimed;
    m_bClaims = true;
    return *this;
  }

  [[nodiscard]] C_Bytes Take() const {
    const auto dwTrue = static_cast<std::uint32_t>(4 + m_body.size());
    return Join({Ascii("RIFF"), U32(m_bClaims ? m_dwClaimed : dwTrue), Ascii(m_formType), m_body});
  }

 private:
  std::string_view m_formType;
  C_Bytes m_body;
  std::uint32_t m_dwClaimed = 0;
  bool m_bClaims = false;
};
