// SPDX-License-Identifier: Apache-2.0
//
// Reads the parts of a block, as the tests of their syntax do.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/EntropyCoder.h"
#include "heron/PartSyntax.h"

namespace heron::test {

using S_Coefficients = std::vector<std::int32_t>;

struct S_Read {
  bool bRead = true;
  S_Coefficients values;  // of whole sections
  std::vector<S_Part> parts;
  std::ptrdiff_t nUnread = 0;
};

inline S_Read ReadParts(std::span<const std::uint8_t> bytes, std::size_t nUnitLength,
                        std::size_t nSamples) {
  const std::size_t nLength = nUnitLength * kSectionUnits;
  C_EntropyDecoder decoder(bytes);
  C_PartReader reader(decoder, nUnitLength);
  S_Read read;
  // Values from before must not stay.
  read.values.assign((nSamples + nLength - 1) / nLength * nLength, 12345);
  for (std::size_t nAt = 0; read.bRead && nAt < nSamples; nAt += nLength) {
    read.bRead = reader.ReadSection(std::span(read.values).subspan(nAt, nLength), nSamples - nAt,
                                    nAt / nUnitLength, read.parts);
  }
  read.nUnread = decoder.Unread();
  return read;
}

inline bool AllZero(std::span<const std::int32_t> values) {
  return std::ranges::all_of(values, [](std::int32_t nValue) { return nValue == 0; });
}

}  // namespace heron::test
