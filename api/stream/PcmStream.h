// SPDX-License-Identifier: Apache-2.0
//
// A stream of linear PCM, integers or floating point, little-endian.
//
//   in the file            int16_t            int32_t             float
//   8 bits, unsigned       (b - 128) << 8     (b - 128) << 24     (b - 128) / 2^7
//   16 bits                as it is           << 16               / 2^15
//   24 bits                >> 8               << 8                / 2^23
//   32 bits                >> 16              as it is            / 2^31, rounded
//   float of 32 or 64      * 2^15, rounded    * 2^31, rounded     as it is, rounded
//
// Floating point is rounded to the nearest integer, to the even one of two, and limited; what is
// not a number becomes 0.
//
// All bits of a sample count. Those of 12 or 20 significant bits use the high bits of 16 or 24.
//
// Bytes that the file claims and does not hold are zeros, as the class library takes them: in 8-bit
// sounds, that is the lowest value. The frames that they are in count as damaged.
#pragma once

#include <cstdint>

#include "source/ByteSource.h"
#include "stream/SampleStream.h"

namespace api {

struct S_PcmFormat {
  std::uint16_t wChannels = 0;
  std::uint16_t wBits = 0;  // of a sample in the file: 8, 16, 24, 32; 32, 64 for floating point
  bool bFloat = false;
};

struct S_PcmRange {
  S_ByteRange claimed;
  std::uint64_t qwHeld = 0;  // how many of the claimed bytes the source has
  // The claimed size and qwHeld mean nothing: the sound ends where the source ends.
  bool bToTheEnd = false;
};

// The source is borrowed. Frames are whole ones; what is left of the claimed size is ignored.
// Throws C_Failure for a format that is not in the table.
C_SampleStreamPtr OpenPcmStream(I_ByteSource& source, const S_PcmRange& range,
                                const S_PcmFormat& format);

}  // namespace api
