// SPDX-License-Identifier: Apache-2.0
//
// Compressed WAV data that is about to be decoded: its format, its decoder, and where it is.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "compressed/MSAdpcmCodec.h"
#include "compressed/WavFileCodecInfo.h"

namespace api {

struct S_EncodedWav {
  C_WavFileCodecInfo codecInfo;
  std::unique_ptr<C_MSAdpcmCodec> decoder;
  std::uint64_t qwAt = 0;
  // In bytes, as far as the source goes. While it does not tell how far that is, this is what the
  // file claims, if it claims anything.
  std::optional<std::uint64_t> qwSize;
  bool bLengthKnown = false;  // the source tells
};

}  // namespace api
