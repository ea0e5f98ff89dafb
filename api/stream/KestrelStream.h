// SPDX-License-Identifier: Apache-2.0
//
// A Kestrel stream (codec/KestrelCodec.h), decoded as it is read.
//
// It opens exactly when C_KestrelCodec::Decode takes its bytes, and gives the same samples. A frame
// that contradicts itself, or that the end of the stream cuts short, counts as damaged: all of its
// 320 samples do.
#pragma once

#include <cstdint>

#include "source/ByteSource.h"
#include "stream/SampleStream.h"

namespace api {

struct S_KestrelStream {
  C_SampleStreamPtr stream;
  std::uint32_t dwBitRate = 0;
  std::uint64_t qwClaimedFrames = 0;  // by the length field
  bool bCut = false;                  // the source is known to end before them
};

// The stream is in this range, which may end after the source. The source must outlive the result.
// Of a source that does not tell its length, the length field of the stream is believed until the
// end comes. Throws C_Failure.
S_KestrelStream OpenKestrelStream(I_ByteSource& source, S_ByteRange range);

}  // namespace api
