// SPDX-License-Identifier: Apache-2.0
//
// Short names and helpers with which the tests use the entropy coder.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "heron/EntropyCoder.h"
#include "heron/MagnitudeCode.h"

namespace heron::test {

using S_Bytes = std::vector<std::uint8_t>;
using C_CodeWriter = C_EntropyEncoder;
using C_CodeReader = C_EntropyDecoder;

template <std::size_t nSymbols>
using S_Frequencies = std::array<std::uint16_t, nSymbols>;

template <std::size_t nSymbols>
void WriteSymbol(C_CodeWriter& writer, const S_Frequencies<nSymbols>& frequencies,
                 std::size_t nSymbol) {
  writer.WriteSymbol<nSymbols>(Accumulate(frequencies), nSymbol);
}

template <std::size_t nSymbols>
std::size_t ReadSymbol(C_CodeReader& reader, const S_Frequencies<nSymbols>& frequencies) {
  return reader.ReadSymbol<nSymbols>(Accumulate(frequencies));
}

// The bytes that fnWrite(writer) produces.
template <typename Write>
S_Bytes Written(Write fnWrite) {
  C_CodeWriter writer;
  fnWrite(writer);
  return writer.Finish();
}

inline S_MagnitudeClass ClassAt(std::int32_t nExpectation) {
  return ClassOf(static_cast<std::uint32_t>(nExpectation));
}

// The models of the tables.
inline constexpr std::size_t kNear = 0;
inline constexpr std::size_t kSteady = 1;

inline const S_MagnitudeCosts& CostsOf(std::size_t nModel, std::size_t nQuantiser,
                                       std::size_t nTable) {
  return kMagnitudeCosts[nModel][nTable][nQuantiser];
}

inline void WriteMagnitude(C_CodeWriter& writer, std::size_t nModel, std::size_t nQuantiser,
                           const S_MagnitudeClass& magnitudeClass, std::int32_t nLevel,
                           bool bNegative) {
  WriteLevel(writer, kMagnitudeCumulative[nModel], nQuantiser, magnitudeClass, nLevel, bNegative);
}

// A level and whether it is negative. Empty for a code that no writer writes.
inline std::optional<std::pair<std::int32_t, bool>> ReadMagnitude(
    C_CodeReader& reader, std::size_t nModel, std::size_t nQuantiser,
    const S_MagnitudeClass& magnitudeClass) {
  const std::uint64_t qwLevel =
      ReadLevel(reader, kMagnitudeCumulative[nModel], nQuantiser, magnitudeClass);
  if (qwLevel > std::uint64_t{1} << kLevelBits) return std::nullopt;
  return std::pair{static_cast<std::int32_t>(qwLevel), qwLevel != 0 && reader.ReadRaw(1) == 1};
}

}  // namespace heron::test
