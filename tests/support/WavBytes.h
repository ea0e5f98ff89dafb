// SPDX-License-Identifier: Apache-2.0
//
// Payloads of RIFF sound files, for C_RiffBytes.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "RiffBytes.h"

// The plain 16-byte format record, with the correct block align and byte rate.
inline C_Bytes FmtBytes(std::uint16_t wTag, std::uint16_t wChannels, std::uint32_t dwRate,
                        std::uint16_t wBits) {
  const auto wBlockAlign = static_cast<std::uint16_t>(wChannels * ((wBits + 7) / 8));
  return Join({U16(wTag), U16(wChannels), U32(dwRate), U32(dwRate * wBlockAlign), U16(wBlockAlign),
               U16(wBits)});
}

struct S_CueBytes {
  std::uint32_t dwID = 0;
  std::uint32_t dwPosition = 0;
  std::uint32_t dwSampleOffset = 0;
};
inline C_Bytes CueBytes(const std::vector<S_CueBytes>& points) {
  C_Bytes payload = U32(static_cast<std::uint32_t>(points.size()));
  for (const S_CueBytes& point : points) {
    payload = Join({payload, U32(point.dwID), U32(point.dwPosition), Ascii("data"), U32(0), U32(0),
                    U32(point.dwSampleOffset)});
  }
  return payload;
}

// Sub-chunks of a "LIST" of type "adtl".
inline C_Bytes LablBytes(std::uint32_t dwID, std::string_view text) {
  const std::size_t cbText = (text.size() + 2) & ~std::size_t{1};
  C_Bytes stored = Ascii(text);
  stored.resize(cbText);
  return ChunkBytes("labl", Join({U32(dwID), stored}));
}
inline C_Bytes LtxtBytes(std::uint32_t dwID, std::uint32_t dwSamples) {
  return ChunkBytes("ltxt", Join({U32(dwID), U32(dwSamples), Ascii("rgn "), C_Bytes(8)}));
}
inline C_Bytes AdtlBytes(std::initializer_list<C_Bytes> subChunks) {
  return Join({Ascii("adtl"), Join(subChunks)});
}

// A "smpl" payload with one forward loop.
inline C_Bytes SmplBytes(std::uint32_t dwStart, std::uint32_t dwEnd) {
  return Join({U32(0x01000020), U32(0x11), U32(62500), U32(60), U32(0), U32(0), U32(0), U32(1),
               U32(0), U32(7), U32(0), U32(dwStart), U32(dwEnd), U32(0), U32(0)});
}

// Bytes that differ from their neighbours: 1, 2, ... 255, 0, 1 ...
inline C_Bytes RampBytes(std::size_t cbCount) {
  C_Bytes bytes(cbCount);
  for (std::size_t i = 0; i < cbCount; ++i) bytes[i] = static_cast<std::uint8_t>(i + 1);
  return bytes;
}

// A 16 kHz mono 16-bit file with cbData ramp bytes, to be extended with Chunk.
inline C_RiffBytes MonoWav(std::size_t cbData, std::string_view formType = "WAVE") {
  C_RiffBytes riff(formType);
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", RampBytes(cbData));
  return riff;
}
