// SPDX-License-Identifier: Apache-2.0
//
// The tests by which a file is recognised, each of which looks at its first bytes. They are made in
// this order, and the first one that finds something decides: RIFF (WAVE and VEMD), SP header, VEF,
// codec head, bare Kestrel stream. The last two look for what has no mark of its own, so it also
// takes a stream that can be decoded to make such a file.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "voxplay.h"

namespace api {

// Enough for the tests, but for the format in a WAV file with a large chunk before it.
inline constexpr std::size_t kTestedBytes = 4096;

struct S_TestResult {
  bool bFound = false;
  voxplay_container eContainer = VOXPLAY_CONTAINER_NONE;
  voxplay_codec eCodec = VOXPLAY_CODEC_NONE;  // NONE when these bytes do not tell
  bool bSupported = false;                    // as far as these bytes tell
  // What was looked for and what was found: "SP header: found, version 254, identifier 14".
  std::string strLine;
};

S_TestResult TestRiff(std::span<const std::uint8_t> first);
S_TestResult TestSpHeader(std::span<const std::uint8_t> first);
S_TestResult TestVef(std::span<const std::uint8_t> first);
S_TestResult TestCodecHead(std::span<const std::uint8_t> first);
S_TestResult TestBareKestrel(std::span<const std::uint8_t> first);

using PFN_Test = S_TestResult (*)(std::span<const std::uint8_t> first);
inline constexpr std::array<PFN_Test, 5> kTests = {&TestRiff, &TestSpHeader, &TestVef,
                                                   &TestCodecHead, &TestBareKestrel};

// Why a file with an SP header of this identifier is refused; empty when it is not.
std::string WhyNotIdentifier(std::uint16_t wIdentifier);

}  // namespace api
