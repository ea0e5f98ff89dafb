// SPDX-License-Identifier: Apache-2.0
//
// Which of our formats a file has, by its first bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "voxplay.h"

namespace api {

struct S_Probe {
  voxplay_container eContainer = VOXPLAY_CONTAINER_NONE;
  voxplay_codec eCodec = VOXPLAY_CODEC_NONE;  // NONE when these bytes do not tell
  bool bSupported = false;                    // as far as these bytes tell
  // A line for each test that was made, up to the one that found something: what it looked for, and
  // what it found. Each line ends with a line feed.
  std::string strText;
};

// The tests are those of the reader (reader/Detection.h).
S_Probe Probe(std::span<const std::uint8_t> firstBytes);

}  // namespace api
