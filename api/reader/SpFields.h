// SPDX-License-Identifier: Apache-2.0
//
// The SP header and the codec head that stand before coded streams, in bytes that are in memory.
// file/SpHeader.h and file/CodecHead.h describe them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace api {

struct S_SpFields {
  static constexpr std::size_t kBytes = 48;  // of every version

  std::uint32_t dwVersion = 254;  // as the file says
  std::uint16_t wIdentifier = 0;
  std::uint16_t wFormat = 16;
  std::uint32_t dwSampleRate = 8000;
  std::uint32_t dwValue30 = 0;
  std::uint16_t wValue34 = 0;
  std::uint8_t byValue36 = 0;
  std::uint32_t dwValue37 = 0;
};

// The header at the beginning of a file, by the rules of the class library: the first 22 bytes
// decide, and a field that the bytes do not hold completely has its default. Empty when there is
// none.
std::optional<S_SpFields> ReadSpFields(std::span<const std::uint8_t> first);

// Which part of the header is not there: "the signature is RIFF and not 00 FF 00 FF". Empty when
// there is a header.
std::string WhyNoSpHeader(std::span<const std::uint8_t> first);

struct S_CodecHead {
  static constexpr std::size_t kBytes = 6;

  std::uint16_t wType = 0;
  std::uint16_t wSampleRate = 0;
  std::uint16_t wVersion = 0;
};

// The first six bytes; empty when there are fewer.
std::optional<S_CodecHead> ReadCodecHead(std::span<const std::uint8_t> first);

}  // namespace api
