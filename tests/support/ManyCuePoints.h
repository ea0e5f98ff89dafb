// SPDX-License-Identifier: Apache-2.0
//
// Cue points in any number, for tests that count how work grows with it.
#pragma once

#include <cstdint>
#include <vector>

#include "ByteReader.h"

// Identifiers that are far apart, so that a table indexed by their low bits would put them all in
// one place.
inline std::uint32_t FarID(std::uint32_t i) { return i * 0x8000U + i / 0x20000U; }

// The payload of a "cue " chunk; the positions fall.
inline std::vector<std::uint8_t> CuePoints(std::uint32_t nCount) {
  vcm::C_ByteWriter cue;
  cue.U32(nCount);
  for (std::uint32_t i = 0; i < nCount; ++i) {
    cue.U32(FarID(i));
    cue.U32(nCount - i);
    cue.Text("data", 4);
    cue.Zeros(12);
  }
  return cue.Take();
}
