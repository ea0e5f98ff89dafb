// SPDX-License-Identifier: Apache-2.0
//
// Kestrel and Heron streams of any container.
#pragma once

#include <cstdint>

#include "reader/Opened.h"

namespace api {

// From a position to the end of the source. Of a source whose length is not known, as much as the
// length field of a stream can claim.
S_ByteRange RestOf(const I_ByteSource& source, std::uint64_t qwAt);

// These set the stream, and what of the info the stream tells. They throw C_Failure for a stream
// that the class library does not decode; Heron also for a source that only goes forward.
void OpenKestrel(I_ByteSource& source, const S_ByteRange& range, std::uint32_t dwSampleRate,
                 S_Opened& opened);
void OpenHeron(I_ByteSource& source, const S_ByteRange& range, std::uint32_t dwSampleRate,
               S_Opened& opened);
// The type is one of a stream of this library.
void OpenStreamOfType(I_ByteSource& source, std::uint32_t dwType, const S_ByteRange& range,
                      std::uint32_t dwSampleRate, S_Opened& opened);

}  // namespace api
