// SPDX-License-Identifier: Apache-2.0
//
// A block in the coded audio. Little-endian:
//
//   size  field
//   1     sync: kBlockSync
//   1     number of the block in the sound, modulo 256
//   3     size of the run in bytes
//   2     check: the CRC-16 of the run, preceded by the four bytes before this field
//   n     run: the sections of the block (PartSyntax.h) in the two sequences of EntropyCoder.h
//
// A sound of one block has neither sync, number nor size; its run ends where the coded audio ends,
// and its check is that of the run alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "heron/CodedBytes.h"

namespace heron {

inline constexpr std::uint8_t kBlockSync = 0xB6;
inline constexpr std::size_t kBlockHeadBytes = 7;
inline constexpr std::size_t kCheckBytes = 2;  // all that a sound of one block has before its run
inline constexpr std::size_t kMaxRunBytes = (std::size_t{1} << 24) - 1;

// The CRC-16 with the polynomial x^16 + x^12 + x^5 + 1 that begins with all bits set, highest bit
// first. nBefore continues from the bytes before.
std::uint16_t Crc16(std::span<const std::uint8_t> bytes, std::uint16_t nBefore = 0xFFFF) noexcept;

// Appends a block with this run, which has at most kMaxRunBytes.
void AppendBlock(std::vector<std::uint8_t>& coded, std::size_t nNumber,
                 std::span<const std::uint8_t> run);
void AppendOnlyBlock(std::vector<std::uint8_t>& coded, std::span<const std::uint8_t> run);

// The place of a run in coded bytes.
struct S_Run {
  std::uint64_t qwAt = 0;
  std::uint64_t qwBytes = 0;

  [[nodiscard]] std::uint64_t End() const noexcept { return qwAt + qwBytes; }
};
struct S_Block {
  std::uint8_t byNumber = 0;
  std::uint16_t wCheck = 0;
  S_Run run;
};
// What the head at qwAt says. Empty when there is no sync, or when the block would end after the
// bytes.
std::optional<S_Block> ReadHead(C_CodedBytes& bytes, std::uint64_t qwAt);
// The block at qwAt. Empty when no whole block with a right check begins there.
std::optional<S_Block> ReadBlock(C_CodedBytes& bytes, std::uint64_t qwAt);
// The size of the block that seems to begin here, with or without a sync; 0 when it would end after
// the bytes.
std::uint64_t ClaimedBytes(C_CodedBytes& bytes, std::uint64_t qwAt);
// The run of a sound of one block.
std::optional<S_Run> ReadOnlyBlock(C_CodedBytes& bytes);

}  // namespace heron
