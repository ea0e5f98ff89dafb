// SPDX-License-Identifier: Apache-2.0
//
// Streams of the compressed kinds of WAV data: MS ADPCM (tag 2), A-law (6), mu-law (7) and DVI
// ADPCM of 4 and of 3 bits (11). They refuse what compressed/CompressedWav.h refuses, and give the
// samples that it gives, as many of them, from the same decoders. A frame that the end of the data
// cuts is left out.
//
// A file that is cut is a shorter sound. What its last block lacks, and what blocks lack of the
// samples that the format says they have, is silence; nothing in such data tells damage, so no
// frame counts as damaged.
#pragma once

#include <cstdint>
#include <limits>
#include <span>

#include "source/ByteSource.h"
#include "stream/SampleStream.h"

namespace api {

// As the size of compressed data: it ends where the source ends. Any size that reaches the largest
// position means that.
constexpr std::uint64_t kToTheEnd = std::numeric_limits<std::uint64_t>::max();

// The source is borrowed. data is what the file claims, and may go beyond what the source holds;
// format is the whole payload of "fmt ". Throws C_Failure.
C_SampleStreamPtr OpenCompressedStream(I_ByteSource& source, S_ByteRange data,
                                       std::span<const std::uint8_t> format);

}  // namespace api
