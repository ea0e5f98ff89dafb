// SPDX-License-Identifier: Apache-2.0
#include "heron/Block.h"

#include <algorithm>
#include <array>

namespace heron {
namespace {

constexpr auto kCrcTable = [] {
  std::array<std::uint16_t, 256> table{};
  for (unsigned int n = 0; n < table.size(); ++n) {
    unsigned int nRest = n << 8;
    for (int nBit = 0; nBit < 8; ++nBit) nRest = nRest << 1 ^ ((nRest & 0x8000) != 0 ? 0x1021 : 0);
    table[n] = static_cast<std::uint16_t>(nRest);
  }
  return table;
}();

void Append16(std::vector<std::uint8_t>& bytes, unsigned int nValue) {
  bytes.push_back(static_cast<std::uint8_t>(nValue));
  bytes.push_back(static_cast<std::uint8_t>(nValue >> 8));
}

constexpr std::size_t kNumberAt = 1;
constexpr std::size_t kSizeAt = 2;
constexpr std::size_t kCheckAt = 5;

std::uint16_t Number16(std::span<const std::uint8_t> bytes) {
  return static_cast<std::uint16_t>(bytes[0] | static_cast<unsigned int>(bytes[1]) << 8);
}

std::size_t SizeIn(std::span<const std::uint8_t> head) {
  return Number16(head.subspan(kSizeAt)) | std::size_t{head[kSizeAt + 2]} << 16;
}

// The head at qwAt, with or without a sync; empty when the block would end after the bytes.
std::span<const std::uint8_t> ViewHead(C_CodedBytes& bytes, std::uint64_t qwAt) {
  const std::uint64_t qwLeft = bytes.Size() - qwAt;
  if (qwLeft < kBlockHeadBytes) return {};
  const auto head = bytes.View(qwAt, kBlockHeadBytes, kBlockHeadBytes);
  return SizeIn(head) > qwLeft - kBlockHeadBytes ? std::span<const std::uint8_t>() : head;
}

S_Block BlockOf(std::span<const std::uint8_t> head, std::uint64_t qwAt) {
  return {
      head[kNumberAt], Number16(head.subspan(kCheckAt)), {qwAt + kBlockHeadBytes, SizeIn(head)}};
}

std::uint16_t CrcOf(C_CodedBytes& bytes, S_Run run, std::uint16_t wBefore) {
  while (run.qwBytes > 0) {
    const auto nMost =
        static_cast<std::size_t>(std::min<std::uint64_t>(run.qwBytes, C_CodedBytes::kPiece));
    const auto view = bytes.View(run.qwAt, 1, nMost);
    wBefore = Crc16(view, wBefore);
    run.qwAt += view.size();
    run.qwBytes -= view.size();
  }
  return wBefore;
}

}  // namespace

std::uint16_t Crc16(std::span<const std::uint8_t> bytes, std::uint16_t nBefore) noexcept {
  unsigned int nCrc = nBefore;
  for (const std::uint8_t by : bytes) nCrc = (nCrc << 8 & 0xFFFF) ^ kCrcTable[nCrc >> 8 ^ by];
  return static_cast<std::uint16_t>(nCrc);
}

void AppendBlock(std::vector<std::uint8_t>& coded, std::size_t nNumber,
                 std::span<const std::uint8_t> run) {
  const std::array<std::uint8_t, 4> covered = {
      static_cast<std::uint8_t>(nNumber), static_cast<std::uint8_t>(run.size()),
      static_cast<std::uint8_t>(run.size() >> 8), static_cast<std::uint8_t>(run.size() >> 16)};
  coded.push_back(kBlockSync);
  coded.insert(coded.end(), covered.begin(), covered.end());
  Append16(coded, Crc16(run, Crc16(covered)));
  coded.insert(coded.end(), run.begin(), run.end());
}

void AppendOnlyBlock(std::vector<std::uint8_t>& coded, std::span<const std::uint8_t> run) {
  Append16(coded, Crc16(run));
  coded.insert(coded.end(), run.begin(), run.end());
}

std::optional<S_Block> ReadHead(C_CodedBytes& bytes, std::uint64_t qwAt) {
  const auto head = ViewHead(bytes, qwAt);
  if (head.empty() || head[0] != kBlockSync) return std::nullopt;
  return BlockOf(head, qwAt);
}

std::optional<S_Block> ReadBlock(C_CodedBytes& bytes, std::uint64_t qwAt) {
  const auto head = ViewHead(bytes, qwAt);
  if (head.empty() || head[0] != kBlockSync) return std::nullopt;
  const S_Block block = BlockOf(head, qwAt);
  const std::uint16_t wCovered = Crc16(head.subspan(kNumberAt, kCheckAt - kNumberAt));
  if (block.wCheck != CrcOf(bytes, block.run, wCovered)) return std::nullopt;
  return block;
}

std::uint64_t ClaimedBytes(C_CodedBytes& bytes, std::uint64_t qwAt) {
  const auto head = ViewHead(bytes, qwAt);
  return head.empty() ? 0 : kBlockHeadBytes + SizeIn(head);
}

std::optional<S_Run> ReadOnlyBlock(C_CodedBytes& bytes) {
  if (bytes.Size() < kCheckBytes) return std::nullopt;
  const std::uint16_t wCheck = Number16(bytes.View(0, kCheckBytes, C_CodedBytes::kPiece));
  const S_Run run{kCheckBytes, bytes.Size() - kCheckBytes};
  if (wCheck != CrcOf(bytes, run, 0xFFFF)) return std::nullopt;
  return run;
}

}  // namespace heron
