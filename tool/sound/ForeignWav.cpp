// SPDX-License-Identifier: Apache-2.0
#include "sound/ForeignWav.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "sound/ChunkWalk.h"
#include "sound/LibrarySound.h"

namespace tool {
namespace {

constexpr std::size_t kFormatBytes = 16;
constexpr std::uint16_t kGsm = 0x31;
constexpr std::uint16_t kGsmBlock = 65;
constexpr std::uint64_t kGsmBlockFrames = 320;
constexpr std::size_t kTagAt = 0;
constexpr std::size_t kRateAt = 4;
constexpr std::size_t kBlockAt = 12;

using C_Format = std::array<std::uint8_t, kFormatBytes>;

bool ReadAt(C_FileBytes& bytes, std::uint64_t qwAt, std::span<std::uint8_t> wanted) {
  bytes.Seek(qwAt);
  return bytes.Read(wanted.data(), wanted.size()) == static_cast<std::int64_t>(wanted.size());
}

// RF64 is the same with larger sizes.
bool IsWav(C_FileBytes& bytes) {
  std::array<std::uint8_t, 12> head{};
  if (!ReadAt(bytes, 0, head)) return false;
  const std::string text(head.begin(), head.end());
  return (text.starts_with("RIFF") || text.starts_with("RF64")) && text.ends_with("WAVE");
}

std::optional<S_WalkedChunk> FormatChunk(C_FileBytes& bytes) {
  if (!IsWav(bytes)) return {};
  const auto chunk = FindChunk(bytes, kRiffChunks, "fmt ");
  return chunk && chunk->qwSize >= kFormatBytes ? chunk : std::nullopt;
}

std::optional<C_Format> ReadFormat(C_FileBytes& bytes) {
  const auto chunk = FormatChunk(bytes);
  C_Format format{};
  return chunk && ReadAt(bytes, chunk->qwAt, format) ? std::optional(format) : std::nullopt;
}

// The low byte comes first.
std::uint16_t Number(const C_Format& format, std::size_t nAt) {
  return static_cast<std::uint16_t>(format.at(nAt) | format.at(nAt + 1) << 8U);
}

bool IsGsm(const C_Format& format) {
  return Number(format, kTagAt) == kGsm && Number(format, kBlockAt) == kGsmBlock;
}

// What the encoder was given.
std::optional<std::uint64_t> ToldFrames(C_FileBytes& bytes) {
  const auto chunk = FindChunk(bytes, kRiffChunks, "fact");
  std::array<std::uint8_t, 4> number{};
  if (!chunk || chunk->qwSize < number.size() || !ReadAt(bytes, chunk->qwAt, number)) return {};
  std::uint64_t qwFrames = 0;
  for (std::size_t n = number.size(); n-- > 0;) qwFrames = qwFrames << 8U | number.at(n);
  return qwFrames;
}

// The record of mono samples of 8 bits at the same rate.
C_Format PlainFormat(const C_Format& format) {
  C_Format plain{1, 0, 1, 0};
  for (const std::size_t nTo : {kRateAt, kRateAt + 4}) {
    std::copy_n(format.begin() + kRateAt, 4, plain.begin() + static_cast<std::ptrdiff_t>(nTo));
  }
  plain[kBlockAt] = 1;
  plain[kBlockAt + 2] = 8;
  return plain;
}

}  // namespace

std::optional<std::uint64_t> GsmFrames(C_FileBytes& bytes) {
  const auto format = ReadFormat(bytes);
  if (!format || !IsGsm(*format)) return {};
  const auto data = FindChunk(bytes, kRiffChunks, "data");
  if (!data || bytes.Length() < 0) return {};
  const std::uint64_t qwRest = static_cast<std::uint64_t>(bytes.Length()) - data->qwAt;
  const std::uint64_t qwBlocks = std::min(data->qwSize, qwRest) / kGsmBlock;
  const std::uint64_t qwFrames = qwBlocks * kGsmBlockFrames;
  const std::uint64_t qwTold = ToldFrames(bytes).value_or(qwFrames);
  const bool bInLast = qwTold <= qwFrames && qwFrames - qwTold < kGsmBlockFrames;
  return bInLast ? qwTold : qwFrames;
}

std::optional<S_WavMarks> ReadWavMarks(const C_FileBytes& bytes) {
  C_FileBytes plain = bytes.Again();
  const auto format = ReadFormat(plain);
  if (!format) return {};
  const C_Format record = PlainFormat(*format);
  plain.Cover(FormatChunk(plain)->qwAt, {record.begin(), record.end()});
  try {
    const auto sound = OpenLibrarySound(std::move(plain), "", VOXPLAY_READ_NO_BARE);
    return S_WavMarks{voxplay::Notes(sound->Notes()), sound->IsCut()};
  } catch (const voxplay::Error&) {
    return {};
  }
}

}  // namespace tool
