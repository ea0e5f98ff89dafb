// SPDX-License-Identifier: Apache-2.0
//
// The functions that the info objects share for reading and writing their chunks.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "I_RiffChunk.h"

namespace vcm {

// Reads cb bytes from qwOffset within the payload; empty when the payload does not hold them all.
template <std::size_t cb>
std::optional<std::array<std::uint8_t, cb>> ReadField(I_RiffChunk& chunk, std::uint64_t qwOffset) {
  std::array<std::uint8_t, cb> field{};
  if (qwOffset > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  if (!chunk.GetData(field.data(), cb, static_cast<unsigned int>(qwOffset))) return std::nullopt;
  return field;
}

// The number of complete records in a payload of cbPayload bytes that claims dwClaimed records from
// cbHeader on.
constexpr std::uint32_t WholeRecords(std::uint32_t dwClaimed, std::uint32_t cbPayload,
                                     std::uint32_t cbHeader, std::uint32_t cbRecord) noexcept {
  if (cbPayload < cbHeader) return 0;
  const std::uint32_t dwHeld = (cbPayload - cbHeader) / cbRecord;
  return dwClaimed < dwHeld ? dwClaimed : dwHeld;
}
static_assert(WholeRecords(0xFFFFFFFFu, 27, 4, 24) == 0);
static_assert(WholeRecords(0xFFFFFFFFu, 52, 4, 24) == 2);
static_assert(WholeRecords(1, 52, 4, 24) == 1);

// Sets the chunk's payload. False when the chunk was made with another length.
inline bool SavePayload(I_RiffChunk& chunk, std::span<const std::uint8_t> payload) {
  if (chunk.GetDataLength() != payload.size()) return false;
  chunk.SetData(payload.data());
  return true;
}

}  // namespace vcm
