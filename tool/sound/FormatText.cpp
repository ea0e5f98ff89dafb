// SPDX-License-Identifier: Apache-2.0
#include "sound/FormatText.h"

#include <array>

namespace tool {
namespace {

constexpr std::uint32_t kCodedBits = 16;  // what every codec gives

bool HasStream(const voxplay::Info& info) {
  return info.codec == VOXPLAY_CODEC_KESTREL || info.codec == VOXPLAY_CODEC_HERON;
}

std::string WidthText(const voxplay::Info& info) {
  switch (info.codec) {
    case VOXPLAY_CODEC_PCM:
    case VOXPLAY_CODEC_FLOAT:
      return std::to_string(info.bits_per_sample) + " bits";
    case VOXPLAY_CODEC_HERON:
      return std::to_string(info.bits_per_sample) + " bits a sample";
    case VOXPLAY_CODEC_KESTREL:
      return std::to_string(info.bit_rate) + " bit/s";
    default:
      return "";
  }
}

void Append(std::string& strText, const std::string& strPart) {
  if (strPart.empty()) return;
  if (!strText.empty()) strText += ", ";
  strText += strPart;
}

}  // namespace

std::string ContainerText(std::uint32_t dwContainer) {
  switch (dwContainer) {
    case VOXPLAY_CONTAINER_WAV:
      return "WAV";
    case VOXPLAY_CONTAINER_VEMD:
      return "VEMD";
    case VOXPLAY_CONTAINER_VEF:
      return "VEF";
    case VOXPLAY_CONTAINER_SP:
      return "SP header";
    case VOXPLAY_CONTAINER_HEAD:
      return "codec head";
    case VOXPLAY_CONTAINER_BARE:
      return "no header";
    default:
      return "";
  }
}

std::string CodecText(std::uint32_t dwCodec) {
  switch (dwCodec) {
    case VOXPLAY_CODEC_PCM:
      return "PCM";
    case VOXPLAY_CODEC_FLOAT:
      return "floating point";
    case VOXPLAY_CODEC_MULAW:
      return "mu-law";
    case VOXPLAY_CODEC_ALAW:
      return "A-law";
    case VOXPLAY_CODEC_MS_ADPCM:
      return "MS ADPCM";
    case VOXPLAY_CODEC_DVI4:
      return "DVI ADPCM of 4 bits";
    case VOXPLAY_CODEC_DVI3:
      return "DVI ADPCM of 3 bits";
    case VOXPLAY_CODEC_KESTREL:
      return "Kestrel";
    case VOXPLAY_CODEC_HERON:
      return "Heron";
    default:
      return "";
  }
}

std::string ContainerKey(std::uint32_t dwContainer) {
  constexpr std::array kKeys = {"", "wav", "vemd", "vef", "sp", "codec_head", "bare"};
  return dwContainer < kKeys.size() ? kKeys.at(dwContainer) : "";
}

std::string CodecKey(std::uint32_t dwCodec) {
  if (dwCodec == VOXPLAY_CODEC_KESTREL) return "kestrel";
  if (dwCodec == VOXPLAY_CODEC_HERON) return "heron";
  constexpr std::array kKeys = {"", "pcm", "float", "mulaw", "alaw", "ms_adpcm", "dvi4", "dvi3"};
  return dwCodec < kKeys.size() ? kKeys.at(dwCodec) : "";
}

std::string FormatText(const voxplay::Info& info) {
  const bool bStreamFirst = HasStream(info) && info.container != VOXPLAY_CONTAINER_VEF;
  std::string strText;
  if (!bStreamFirst) Append(strText, ContainerText(info.container));
  Append(strText, CodecText(info.codec));
  Append(strText, WidthText(info));
  if (bStreamFirst) Append(strText, ContainerText(info.container));
  return strText;
}

std::uint32_t UsedBits(const voxplay::Info& info) {
  if (info.codec == VOXPLAY_CODEC_FLOAT) return 0;
  return info.codec == VOXPLAY_CODEC_PCM ? info.bits_per_sample : kCodedBits;
}

}  // namespace tool
