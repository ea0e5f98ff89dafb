// SPDX-License-Identifier: Apache-2.0
//
// Many samples at a time, from bytes to values and back. The loops have no branches, so the
// compiler makes vector instructions of them. Units are little-endian and have 1, 2 or 4 bytes.
#pragma once

#include <cstddef>
#include <span>

namespace sampleunits {

// How units hold values.
struct S_UnitFormat {
  unsigned int cbUnit = 0;  // nothing is read or written for a width that is not 1, 2 or 4
  bool bSigned = true;
  unsigned int dwSignBit = 0;  // also the offset of unsigned values
};

// How values become units.
struct S_Storing {
  bool bClip = true;  // false: the values are inside the limits already
  int nMinimum = 0;
  int nMaximum = 0;
  unsigned int dwValueMask = 0;   // the bits of a signed value that are stored
  unsigned int dwAccessMask = 0;  // the bits of the unit that are replaced
  bool bExact = true;             // false: negative signed values are stored one step lower
};

// Where samples are: the first one, and the bytes from each to the next.
struct S_Samples {
  const unsigned char* pbyFirst = nullptr;
  std::size_t cbStep = 0;
};

// One value for each sample.
void Read(const S_UnitFormat& format, const S_Samples& samples, std::span<int> values);

// Writes units that lie one after the other.
void Write(const S_UnitFormat& format, const S_Storing& storing, std::span<const int> values,
           unsigned char* pbyUnits);

// These two copy samples of any width, cbSample bytes, to other memory.
void Copy(const S_Samples& samples, std::size_t nCount, std::size_t cbSample, unsigned char* pbyDst,
          std::size_t cbDstStep);
// Puts nCount samples of each side in turn.
void Interleave(const S_Samples& left, const S_Samples& right, std::size_t nCount,
                std::size_t cbSample, unsigned char* pbyDst);

}  // namespace sampleunits
