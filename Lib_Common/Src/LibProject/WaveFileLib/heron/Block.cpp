// SPDX-License-Identifier: Apache-2.0
#include "heron/Block.h"

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

std::size_t ClaimedBytes(std::span<const std::uint8_t> bytes) noexcept {
  if (bytes.size() < kBlockHeadBytes) return 0;
  const std::size_t nSize = std::size_t{bytes[kSizeAt]} | std::size_t{bytes[kSizeAt + 1]} << 8 |
                            std::size_t{bytes[kSizeAt + 2]} << 16;
  return nSize > bytes.size() - kBlockHeadBytes ? 0 : kBlockHeadBytes + nSize;
}

std::optional<S_Block> ReadBlock(std::span<const std::uint8_t> bytes) noexcept {
  const std::size_t nBytes = ClaimedBytes(bytes);
  if (nBytes == 0 || bytes[0] != kBlockSync) return std::nullopt;
  const auto run = bytes.first(nBytes).subspan(kBlockHeadBytes);
  const unsigned int nCheck = bytes[kCheckAt] | static_cast<unsigned int>(bytes[kCheckAt + 1]) << 8;
  if (nCheck != Crc16(run, Crc16(bytes.subspan(kNumberAt, kCheckAt - kNumberAt)))) {
    return std::nullopt;
  }
  return S_Block{bytes[kNumberAt], run, nBytes};
}

std::optional<std::span<const std::uint8_t>> ReadOnlyBlock(
    std::span<const std::uint8_t> bytes) noexcept {
  if (bytes.size() < kCheckBytes) return std::nullopt;
  const auto run = bytes.subspan(kCheckBytes);
  const unsigned int nCheck = bytes[0] | static_cast<unsigned int>(bytes[1]) << 8;
  if (nCheck != Crc16(run)) return std::nullopt;
  return run;
}

}  // namespace heron
