// SPDX-License-Identifier: Apache-2.0
//
// A Heron stream (codec/HeronStream.h), decoded as it is read. One block of about 4 s is in memory.
//
// It opens exactly when C_HeronCodec::Decode takes its bytes, and gives the same samples; but when
// most of a sound of more than half an hour is damaged, this may show only while it is read, and
// reading fails then. All samples of a block that is missing or damaged count as damaged.
#pragma once

#include <cstdint>

#include "source/ByteSource.h"
#include "stream/SampleStream.h"

namespace api {

struct S_HeronStream {
  C_SampleStreamPtr stream;
  int nBitDepth = 0;
  std::uint64_t qwClaimedFrames = 0;  // by the count of samples
  bool bCut = false;                  // the source ends before the audio does, as the head says
};

// The stream is in this range, which may end after the source. The source must outlive the result
// and be able to go back: blocks are found by their heads before the first one is decoded. Throws
// C_Failure.
S_HeronStream OpenHeronStream(I_ByteSource& source, S_ByteRange range, std::uint32_t dwSampleRate);

}  // namespace api
