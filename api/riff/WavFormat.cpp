// SPDX-License-Identifier: Apache-2.0
#include "riff/WavFormat.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "ByteReader.h"
#include "base/Failure.h"
#include "base/Words.h"
#include "chunk/PcmFormat.h"
#include "compressed/WavFileCodecInfo.h"

namespace api {
namespace {

constexpr std::uint16_t kTagFloat = 3;
constexpr std::uint16_t kTagExtensible = 0xFFFE;
constexpr std::size_t kExtensibleBytes = 40;
constexpr unsigned int kMaxPcmBytes = 4;

// What follows the tag in a sub-format that stands for a plain tag.
constexpr auto kPlainSubFormat = std::to_array<std::uint8_t>(
    {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71});

[[noreturn]] void Refuse(voxplay_status eStatus, const std::string& strReason) {
  throw C_Failure(eStatus, "fmt chunk: " + strReason);
}
[[noreturn]] void RefuseTag(std::uint16_t wTag) {
  Refuse(VOXPLAY_UNSUPPORTED, "format tag " + words::Hex16(wTag) + " is not supported");
}

bool IsPlainTag(std::uint16_t wTag) { return C_WavFileCodecInfo::IsAcceptedTag(wTag); }

voxplay_codec CodecOf(std::uint16_t wTag, std::uint16_t wBits) {
  switch (wTag) {
    case WAVE_TAG_PCM:
      return VOXPLAY_CODEC_PCM;
    case WAVE_TAG_MS_ADPCM:
      return VOXPLAY_CODEC_MS_ADPCM;
    case kTagFloat:
      return VOXPLAY_CODEC_FLOAT;
    case WAVE_TAG_ALAW:
      return VOXPLAY_CODEC_ALAW;
    case WAVE_TAG_MULAW:
      return VOXPLAY_CODEC_MULAW;
    default:
      return wBits == 3 ? VOXPLAY_CODEC_DVI3 : VOXPLAY_CODEC_DVI4;
  }
}

std::uint16_t RoomOf(const S_PcmFormatRecord& pcm, voxplay_codec eCodec) {
  if (eCodec != VOXPLAY_CODEC_PCM) return pcm.wBitsPerSample;
  const unsigned int cbNeeded = (pcm.wBitsPerSample + 7U) / 8;
  const bool bExact = cbNeeded * 8 == pcm.wBitsPerSample && cbNeeded != 3;
  const unsigned int cbAlign = pcm.wBlockAlign / std::max<unsigned int>(pcm.wChannels, 1);
  const bool bAligned = cbAlign * pcm.wChannels == pcm.wBlockAlign && cbAlign <= kMaxPcmBytes;
  const unsigned int cbRoom = !bExact && bAligned ? std::max(cbAlign, cbNeeded) : cbNeeded;
  return static_cast<std::uint16_t>(std::min(cbRoom * 8, 0xFFFFU));
}

std::uint32_t BitsPerSecond(const S_PcmFormatRecord& pcm, const S_WavFormat& format,
                            std::uint32_t dwSamplesPerBlock) {
  std::uint64_t qwBits = 8;  // of a sample of one channel
  if (format.IsSampled()) qwBits = format.wStoredBits;
  std::uint64_t qwRate = std::uint64_t{pcm.dwSamplesPerSec} * qwBits;
  if (dwSamplesPerBlock > 0) {
    qwRate = qwRate * pcm.wBlockAlign / dwSamplesPerBlock;
  } else {
    qwRate *= pcm.wChannels;
  }
  return std::in_range<std::uint32_t>(qwRate) ? static_cast<std::uint32_t>(qwRate) : 0;
}

S_WavFormat FormatOf(const S_PcmFormatRecord& pcm, std::uint32_t dwSamplesPerBlock = 0) {
  S_WavFormat format;
  format.wTag = pcm.wFormatTag;
  format.eCodec = CodecOf(pcm.wFormatTag, pcm.wBitsPerSample);
  format.wChannels = pcm.wChannels;
  format.dwSampleRate = pcm.dwSamplesPerSec;
  format.wBits = pcm.wBitsPerSample;
  format.wStoredBits = format.IsSampled() ? RoomOf(pcm, format.eCodec) : std::uint16_t{0};
  format.dwBitsPerSecond = BitsPerSecond(pcm, format, dwSamplesPerBlock);
  return format;
}

bool HasBlocks(std::uint16_t wTag) {
  return wTag == WAVE_TAG_MS_ADPCM || wTag == WAVE_TAG_DVI_ADPCM;
}

void CheckCounts(const S_PcmFormatRecord& pcm) {
  if (pcm.wChannels == 0) Refuse(VOXPLAY_DAMAGED, "it names no channels");
  if (HasBlocks(pcm.wFormatTag)) {
    if (pcm.wBlockAlign == 0) Refuse(VOXPLAY_DAMAGED, "its blocks have no bytes");
  } else if (pcm.wBitsPerSample == 0 &&
             (pcm.wFormatTag == WAVE_TAG_PCM || pcm.wFormatTag == kTagFloat)) {
    Refuse(VOXPLAY_DAMAGED, "its samples have no bits");
  }
}

S_WavFormat ReadPlain(std::span<const std::uint8_t> payload, const S_PcmFormatRecord& pcm) {
  C_WavFileCodecInfo codecInfo;
  if (!codecInfo.SetFormat(payload)) {
    Refuse(VOXPLAY_DAMAGED, words::Counted(payload.size(), "byte") +
                                " are too few for format tag " + words::Hex16(pcm.wFormatTag));
  }
  const bool bBlocks = HasBlocks(pcm.wFormatTag);
  S_WavFormat format = FormatOf(pcm, bBlocks ? codecInfo.GetSamplesPerBlock() : 0U);
  if (bBlocks && codecInfo.GetSamplesPerBlock() == 0) format.dwBitsPerSecond = 0;
  const auto record = codecInfo.GetRecord();
  if (!format.IsSampled()) format.record.assign(record.begin(), record.end());
  return format;
}

// The plain tag that the sub-format stands for; 0 when it stands for none.
std::uint16_t TagOfSubFormat(vcm::C_ByteReader& reader) {
  const std::uint16_t wTag = reader.U16();
  const auto rest = reader.Bytes(kPlainSubFormat.size());
  return std::ranges::equal(rest, kPlainSubFormat) ? wTag : std::uint16_t{0};
}

std::vector<std::uint8_t> PlainRecord(const S_PcmFormatRecord& pcm) {
  vcm::C_ByteWriter writer;
  pcmformat::Write(pcm, writer);
  return writer.Take();
}

S_WavFormat ReadExtensible(std::span<const std::uint8_t> payload, S_PcmFormatRecord pcm) {
  if (payload.size() < kExtensibleBytes) {
    Refuse(VOXPLAY_DAMAGED,
           "an extensible format of " + words::Counted(payload.size(), "byte") + " is too short");
  }
  vcm::C_ByteReader reader(payload.subspan(S_PcmFormatRecord::kBytes));
  reader.Skip(sizeof(std::uint16_t));  // the size of what follows
  const std::uint16_t wValidBits = reader.U16();
  reader.Skip(sizeof(std::uint32_t));  // which loudspeakers
  const auto subFormat = payload.subspan(24, 16);
  pcm.wFormatTag = TagOfSubFormat(reader);
  if (pcm.wFormatTag == 0 || HasBlocks(pcm.wFormatTag) ||
      (!IsPlainTag(pcm.wFormatTag) && pcm.wFormatTag != kTagFloat)) {
    Refuse(VOXPLAY_UNSUPPORTED, "sub-format " + words::Quoted(subFormat) + " is not supported");
  }
  CheckCounts(pcm);
  S_WavFormat format = FormatOf(pcm);
  format.wTag = kTagExtensible;
  if (wValidBits > 0 && wValidBits < format.wBits && format.eCodec == VOXPLAY_CODEC_PCM) {
    format.wBits = wValidBits;
  }
  if (!format.IsSampled()) format.record = PlainRecord(pcm);
  return format;
}

const char* NameOf(voxplay_codec eCodec) {
  switch (eCodec) {
    case VOXPLAY_CODEC_PCM:
      return "PCM";
    case VOXPLAY_CODEC_FLOAT:
      return "float";
    case VOXPLAY_CODEC_MULAW:
      return "mu-law";
    case VOXPLAY_CODEC_ALAW:
      return "A-law";
    case VOXPLAY_CODEC_MS_ADPCM:
      return "MS ADPCM";
    default:
      return "DVI ADPCM";
  }
}

}  // namespace

bool S_WavFormat::IsReadable() const noexcept {
  switch (eCodec) {
    case VOXPLAY_CODEC_PCM:
      return wStoredBits <= kMaxPcmBytes * 8;
    case VOXPLAY_CODEC_FLOAT:
      return wBits == 32 || wBits == 64;
    case VOXPLAY_CODEC_DVI4:
      return wBits == 4;
    default:
      return true;
  }
}

std::string S_WavFormat::Text() const {
  const bool bBits = IsSampled() || eCodec == VOXPLAY_CODEC_DVI3 || eCodec == VOXPLAY_CODEC_DVI4;
  std::string strText = NameOf(eCodec);
  if (bBits) strText += " of " + words::Counted(wBits, "bit");
  return strText + ", " + words::Counted(wChannels, "channel") + ", " +
         std::to_string(dwSampleRate) + " Hz";
}

S_WavFormat ReadWavFormat(std::span<const std::uint8_t> payload) {
  payload = payload.first(std::min<std::size_t>(payload.size(), kMaxFormatBytes));
  vcm::C_ByteReader reader(payload);
  const S_PcmFormatRecord pcm = pcmformat::Read(reader);
  if (!reader.Ok()) {
    Refuse(VOXPLAY_DAMAGED, words::Counted(payload.size(), "byte") + " are too few for a format");
  }
  if (pcm.wFormatTag == kTagExtensible) return ReadExtensible(payload, pcm);
  if (pcm.wFormatTag != kTagFloat && !IsPlainTag(pcm.wFormatTag)) RefuseTag(pcm.wFormatTag);
  CheckCounts(pcm);
  return pcm.wFormatTag == kTagFloat ? FormatOf(pcm) : ReadPlain(payload, pcm);
}

}  // namespace api
