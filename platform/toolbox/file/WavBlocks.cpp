// SPDX-License-Identifier: Apache-2.0
#include "file/WavBlocks.h"

#include <algorithm>
#include <array>

#include "ByteReader.h"
#include "file/MpegSound.h"

namespace toolbox {
namespace {

constexpr UInt64 kRiffHeaderBytes = 12;
constexpr UInt64 kChunkHeaderBytes = 8;
constexpr std::size_t kFormatBytes = 14;

// Chunk codes as the little-endian cursor reads them.
constexpr UInt32 LittleCode(const char (&szCode)[5]) {
  return __builtin_bswap32(FourChars(szCode));
}

template <std::size_t cb>
std::optional<vcm::C_ByteReader> ReadFields(const C_FileDescriptor& file, UInt64 qwOffset,
                                            std::array<std::uint8_t, cb>& bytes) {
  if (file.ReadAt(qwOffset, bytes.data(), cb) != cb) return std::nullopt;
  return vcm::C_ByteReader(bytes);
}

bool IsRiffWave(const C_FileDescriptor& file, UInt64 qwAt) {
  std::array<std::uint8_t, kRiffHeaderBytes> bytes{};
  auto fields = ReadFields(file, qwAt, bytes);
  if (!fields || fields->U32() != LittleCode("RIFF")) return false;
  fields->Skip(4);
  return fields->U32() == LittleCode("WAVE");
}

// False when the chunk is too short or gives the block size as 0.
bool ReadFormat(const C_FileDescriptor& file, UInt64 qwAt, UInt32 dwSize, S_WavBlocks& blocks) {
  std::array<std::uint8_t, kFormatBytes> bytes{};
  if (dwSize < kFormatBytes) return false;
  auto fields = ReadFields(file, qwAt, bytes);
  if (!fields) return false;
  blocks.wFormatTag = fields->U16();
  fields->Skip(10);
  blocks.wBlockAlign = fields->U16();
  return blocks.wBlockAlign != 0;
}

}  // namespace

std::optional<S_WavBlocks> ReadWavBlocks(const C_FileDescriptor& file) {
  const UInt64 qwBegin = C_MpegSound::TagBytes(file);
  if (!IsRiffWave(file, qwBegin)) return std::nullopt;
  S_WavBlocks blocks;
  std::array<std::uint8_t, kChunkHeaderBytes> bytes{};
  // Every step moves forward by at least one header, so the walk ends with the file.
  for (UInt64 qwAt = qwBegin + kRiffHeaderBytes;;) {
    auto header = ReadFields(file, qwAt, bytes);
    if (!header) return std::nullopt;
    qwAt += kChunkHeaderBytes;
    const UInt32 dwCode = header->U32();
    const UInt32 dwSize = header->U32();
    if (dwCode == LittleCode("fmt ") && !ReadFormat(file, qwAt, dwSize, blocks)) {
      return std::nullopt;
    }
    if (dwCode == LittleCode("data")) {
      if (blocks.wBlockAlign == 0) return std::nullopt;
      blocks.qwDataBytes = std::min<UInt64>(dwSize, file.Size() - std::min(qwAt, file.Size()));
      return blocks;
    }
    qwAt += UInt64{dwSize} + (dwSize & 1U);
  }
}

}  // namespace toolbox
