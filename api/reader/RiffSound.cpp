// SPDX-License-Identifier: Apache-2.0
#include "reader/RiffSound.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "ByteReader.h"
#include "base/Failure.h"
#include "base/Words.h"
#include "file/WavFileBase.h"
#include "reader/ChunkPayload.h"
#include "stream/CompressedStream.h"
#include "stream/PcmStream.h"

namespace api {
namespace {

constexpr std::size_t kRecordBytes = 16;
constexpr std::uint16_t kRecordVersion = 256;

bool IsID(const S_FoundChunk& chunk, std::string_view id) {
  return std::ranges::equal(chunk.id, id);
}

std::optional<S_CodecRecord> ReadCodecRecord(std::span<const std::uint8_t> payload) {
  vcm::C_ByteReader reader(payload);
  S_CodecRecord record;
  record.wVersion = reader.U16();
  record.wType = reader.U16();
  record.wSampleRate = reader.U16();
  record.dwBitRate = reader.U32();
  record.byChannels = reader.U8();
  record.byPlatform = reader.U8();
  reader.Skip(sizeof(std::uint32_t));
  const bool bKnown = reader.Ok() && record.wVersion == kRecordVersion;
  return bKnown ? std::optional(record) : std::nullopt;
}

bool MayPad(const S_FoundChunk& chunk) { return IsID(chunk, "JUNK"); }

// Loads chunks one after the other, as the scan finds them.
class C_ChunkLoader {
 public:
  C_ChunkLoader(I_ByteSource& source, E_RiffForm eForm, S_RiffSound& sound)
      : m_source(source), m_eForm(eForm), m_sound(sound) {}

  void Take(const S_FoundChunk& chunk) {
    if (IsID(chunk, "fmt ")) {
      TakeFormat(chunk);
    } else if (IsContainers(chunk, "vafm")) {
      TakeCodecRecord(chunk);
    } else if (!IsID(chunk, "data") && !IsContainers(chunk, "vdat") && !IsID(chunk, "fact") &&
               !IsID(chunk, "ds64")) {
      TakeFurther(chunk);
    }
  }
  [[nodiscard]] bool HasFormat() const noexcept { return m_bFormat; }

 private:
  // In other files than containers, such a chunk belongs to another program.
  [[nodiscard]] bool IsContainers(const S_FoundChunk& chunk, std::string_view id) const {
    return m_eForm == E_RiffForm::Vef && IsID(chunk, id);
  }
  void TakeFormat(const S_FoundChunk& chunk) {
    const auto payload = LoadPayload(m_source, chunk, kMaxFormatBytes);
    const bool bWhole = chunk.qwHeld == chunk.payload.qwSize &&
                        payload.size() == std::min(chunk.qwHeld, kMaxFormatBytes);
    if (!bWhole) throw C_Failure(VOXPLAY_DAMAGED, "fmt chunk: the file ends within it");
    m_sound.format = ReadWavFormat(payload);
    m_bFormat = true;
  }
  void TakeCodecRecord(const S_FoundChunk& chunk) {
    if (m_sound.codecRecord || chunk.qwHeld < chunk.payload.qwSize) return;
    m_sound.codecRecord = ReadCodecRecord(LoadPayload(m_source, chunk, kRecordBytes));
  }
  void TakeFurther(const S_FoundChunk& chunk) {
    auto payload = MayPad(chunk) ? LoadUnlessZeros(m_source, chunk, m_qwLeft)
                                 : LoadWhole(m_source, chunk, m_qwLeft);
    if (!payload) return;
    m_qwLeft -= payload->size();
    const bool bCut = payload->size() < chunk.payload.qwSize;
    m_sound.further.push_back({chunk.id, std::move(*payload), bCut});
  }

  I_ByteSource& m_source;
  E_RiffForm m_eForm;
  S_RiffSound& m_sound;
  bool m_bFormat = false;
  std::uint64_t m_qwLeft = kMaxFurtherBytes;
};

[[noreturn]] void FailWithoutFormat(const I_ByteSource& source) {
  if (source.CanGoBack()) throw C_Failure(VOXPLAY_DAMAGED, "chunks: the format is missing");
  throw C_Failure(VOXPLAY_CANNOT_SEEK,
                  "chunks: the format does not come before the samples, and the input only goes "
                  "forward");
}

// Whether the size of the samples is the largest that a program could think of, because it could
// not go back to correct it. Our own containers are never written like that.
bool IsWrittenToAPipe(const S_RiffContents& contents, const S_FoundChunk& data) {
  return std::ranges::equal(contents.form, std::string_view("WAVE")) &&
         &data == &contents.chunks.back() &&
         data.payload.qwSize - data.qwHeld > C_WavFileBase::kMaxMissingBytes;
}

C_SampleStreamPtr OpenPcm(I_ByteSource& source, const S_WavFormat& format,
                          const S_PcmRange& range) {
  const std::uint64_t qwMissing = range.claimed.qwSize - range.qwHeld;
  if (!range.bToTheEnd && qwMissing > C_WavFileBase::kMaxMissingBytes) {
    throw C_Failure(VOXPLAY_DAMAGED, "data: " + words::Counted(qwMissing, "byte") + " are missing");
  }
  // Values use the high bits of their room, so all bits of it count.
  const bool bFloat = format.eCodec == VOXPLAY_CODEC_FLOAT;
  return OpenPcmStream(source, range, {format.wChannels, format.wStoredBits, bFloat});
}

}  // namespace

S_RiffSound ReadRiffSound(I_ByteSource& source, E_RiffForm eForm) {
  S_RiffSound sound;
  C_ChunkLoader loader(source, eForm, sound);
  auto contents = ScanRiff(source, [&loader](const S_FoundChunk& chunk) { loader.Take(chunk); });
  if (!contents) throw C_Failure(VOXPLAY_UNKNOWN, "RIFF: there is no header");
  if (!loader.HasFormat()) FailWithoutFormat(source);
  sound.contents = std::move(*contents);
  return sound;
}

C_SampleStreamPtr OpenStored(I_ByteSource& source, const S_RiffSound& sound) {
  const S_WavFormat& format = sound.format;
  if (!format.IsReadable()) {
    throw C_Failure(VOXPLAY_UNSUPPORTED, "fmt chunk: " + format.Text() + " is not supported");
  }
  const S_FoundChunk* const pData = sound.contents.Find("data");
  const S_FoundChunk data = pData == nullptr ? S_FoundChunk{} : *pData;
  const bool bToTheEnd =
      pData != nullptr && (sound.contents.bToTheEnd || IsWrittenToAPipe(sound.contents, *pData));
  if (format.IsSampled()) return OpenPcm(source, format, {data.payload, data.qwHeld, bToTheEnd});
  const std::uint64_t qwSize = bToTheEnd ? kToTheEnd : data.payload.qwSize;
  return OpenCompressedStream(source, {data.payload.qwAt, qwSize}, format.record);
}

voxplay_info StoredInfo(const S_RiffSound& sound, voxplay_container eContainer) {
  const S_WavFormat& format = sound.format;
  voxplay_info info{};
  info.container = eContainer;
  info.codec = format.eCodec;
  info.sample_rate = format.dwSampleRate;
  info.channels = format.wChannels;
  info.bits_per_sample = format.IsSampled() ? format.wBits : 0U;
  info.stored_bits = format.wStoredBits;
  info.bit_rate = format.dwBitsPerSecond;
  return info;
}

}  // namespace api
