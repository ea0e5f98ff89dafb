// SPDX-License-Identifier: Apache-2.0
//
// Builds the bytes of files with an SP header, field by field, so that each test shows what is
// wrong in its file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ByteReader.h"

class C_SpBytes {
 public:
  using Bytes = std::vector<std::uint8_t>;

  C_SpBytes& Signature(std::uint32_t dwSignature) { return m_dwSignature = dwSignature, *this; }
  // At most 16 characters; NULs inside are kept.
  C_SpBytes& Text(std::string_view text) { return m_text = text, *this; }
  C_SpBytes& Version(std::uint8_t byVersion) { return m_byVersion = byVersion, *this; }
  C_SpBytes& Kind(std::uint8_t byKind) { return m_byKind = byKind, *this; }
  C_SpBytes& ID(std::uint16_t wID) { return m_wID = wID, *this; }
  C_SpBytes& Format(std::uint16_t wFormat) { return m_wFormat = wFormat, *this; }
  // The two bytes that only version 255 has.
  C_SpBytes& Gap(std::uint16_t wGap) { return m_gap = {wGap}, *this; }
  C_SpBytes& Freq(std::uint32_t dwFreq) { return m_dwFreq = dwFreq, *this; }
  C_SpBytes& Values(std::uint32_t dw30, std::uint16_t w34, std::uint8_t by36, std::uint32_t dw37) {
    m_dw30 = dw30;
    m_w34 = w34;
    m_by36 = by36;
    m_dw37 = dw37;
    return *this;
  }
  C_SpBytes& Stream(const Bytes& stream) { return m_stream = stream, *this; }

  [[nodiscard]] Bytes Take() const {
    vcm::C_ByteWriter writer;
    writer.U32(m_dwSignature);
    writer.Text(m_text, 16);
    writer.U8(m_byVersion);
    writer.U8(m_byKind);
    writer.U16(m_wID);
    writer.U16(m_wFormat);
    for (const std::uint16_t wGap : m_gap) writer.U16(wGap);
    writer.U32(m_dwFreq);
    writer.U32(m_dw30);
    writer.U16(m_w34);
    writer.U8(m_by36);
    writer.U32(m_dw37);
    writer.Zeros(7);
    writer.Bytes(m_stream);
    return writer.Take();
  }
  // The first cbSize bytes.
  [[nodiscard]] Bytes Take(std::size_t cbSize) const {
    Bytes bytes = Take();
    bytes.resize(cbSize);
    return bytes;
  }

 private:
  std::uint32_t m_dwSignature = 0xFF00FF00;
  std::string_view m_text = "VOXELTRONIC SP";
  std::uint8_t m_byVersion = 254;
  std::uint8_t m_byKind = 2;
  std::uint16_t m_wID = 14;
  std::uint16_t m_wFormat = 16;
  std::vector<std::uint16_t> m_gap;
  std::uint32_t m_dwFreq = 16000;
  std::uint32_t m_dw30 = 0;
  std::uint16_t m_w34 = 0;
  std::uint8_t m_by36 = 0;
  std::uint32_t m_dw37 = 0;
  Bytes m_stream;
};
