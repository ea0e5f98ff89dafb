// SPDX-License-Identifier: Apache-2.0
#include "writer/FileType.h"

#include "interface/AudioFileType.h"
#include "kestrel/Configuration.h"

namespace api {
namespace {

unsigned int HeronTypeOf(std::uint32_t dwBits) noexcept {
  switch (dwBits) {
    case 2:
      return AUDIO_FILE_HERON_2BIT;
    case 3:
      return AUDIO_FILE_HERON_3BIT;
    case 4:
      return AUDIO_FILE_HERON_4BIT;
    case 5:
      return AUDIO_FILE_HERON_5BIT;
    case 6:
      return AUDIO_FILE_HERON_6BIT;
    default:
      return AUDIO_FILE_UNKNOWN;
  }
}

}  // namespace

bool HasStream(const voxplay_format& format) noexcept {
  return format.codec == VOXPLAY_CODEC_KESTREL || format.codec == VOXPLAY_CODEC_HERON;
}

const char* NameOfContainer(std::uint32_t dwContainer) noexcept {
  switch (dwContainer) {
    case VOXPLAY_CONTAINER_WAV:
      return "WAV";
    case VOXPLAY_CONTAINER_VEMD:
      return "VEMD";
    case VOXPLAY_CONTAINER_VEF:
      return "VEF";
    case VOXPLAY_CONTAINER_SP:
      return "an SP header";
    case VOXPLAY_CONTAINER_HEAD:
      return "a codec head";
    case VOXPLAY_CONTAINER_BARE:
      return "a bare stream";
    default:
      return nullptr;
  }
}

std::optional<heronstream::S_Variant> HeronVariantOf(const voxplay_format& format) noexcept {
  if (format.codec != VOXPLAY_CODEC_HERON) return std::nullopt;
  return heronstream::VariantOfType(HeronTypeOf(format.bits_per_sample));
}

std::uint16_t FileTypeOf(const voxplay_format& format) noexcept {
  const auto variant = HeronVariantOf(format);
  return static_cast<std::uint16_t>(variant ? variant->eType : AUDIO_FILE_KESTREL);
}

std::uint32_t BitRateOf(const voxplay_format& format) noexcept {
  if (format.codec != VOXPLAY_CODEC_KESTREL || format.bit_rate != 0) return format.bit_rate;
  return kestrel::kDefaultBitRate;
}

}  // namespace api
