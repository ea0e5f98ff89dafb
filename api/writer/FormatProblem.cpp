// SPDX-License-Identifier: Apache-2.0
#include "writer/FormatProblem.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "heron/Configuration.h"
#include "writer/FileType.h"

namespace api {
namespace {

constexpr std::uint32_t kMostChannels = 64;
constexpr std::uint32_t kMostHeadRate = 65535;
constexpr auto kKestrelRates =
    std::to_array<std::uint32_t>({7200, 9600, 12000, 14400, 16000, 20000, 24000, 32000});

bool HoldsCodec(const voxplay_format& format) {
  switch (format.container) {
    case VOXPLAY_CONTAINER_WAV:
      return format.codec == VOXPLAY_CODEC_PCM || format.codec == VOXPLAY_CODEC_FLOAT;
    case VOXPLAY_CONTAINER_VEMD:
      return format.codec == VOXPLAY_CODEC_PCM;
    case VOXPLAY_CONTAINER_VEF:
      return format.codec == VOXPLAY_CODEC_PCM || HasStream(format);
    default:
      return HasStream(format);
  }
}

std::string WidthProblem(const voxplay_format& format) {
  const std::uint32_t dwBits = format.bits_per_sample;
  switch (format.codec) {
    case VOXPLAY_CODEC_PCM:
      if (dwBits == 8 || dwBits == 16 || dwBits == 24 || dwBits == 32) return {};
      return "format: PCM is written with 8, 16, 24 or 32 bits per sample";
    case VOXPLAY_CODEC_FLOAT:
      return dwBits == 32 ? "" : "format: floating point is written with 32 bits per sample";
    case VOXPLAY_CODEC_KESTREL:
      return dwBits == 0 ? "" : "format: Kestrel has no bits per sample";
    default:
      break;
  }
  if (dwBits < heron::kMinBitDepth || dwBits > heron::kMaxBitDepth) {
    return "format: Heron has 2 to 6 bits per sample";
  }
  if (format.container == VOXPLAY_CONTAINER_SP && dwBits < 4) {
    return "format: Heron of 2 or 3 bits would not be recognised after an SP header";
  }
  return {};
}

std::string BitRateProblem(const voxplay_format& format) {
  if (format.bit_rate == 0) return {};
  if (format.codec != VOXPLAY_CODEC_KESTREL) return "format: only Kestrel has a bit rate";
  if (std::ranges::find(kKestrelRates, format.bit_rate) != kKestrelRates.end()) return {};
  return "format: Kestrel has bit rates of 7200, 9600, 12000, 14400, 16000, 20000, 24000 or 32000";
}

std::string SampleRateProblem(const voxplay_format& format) {
  const std::uint32_t dwRate = format.sample_rate;
  if (dwRate == 0) return "format: there is no sample rate";
  if (format.codec == VOXPLAY_CODEC_HERON &&
      (dwRate < heron::kMinSampleRate || dwRate > heron::kMaxSampleRate)) {
    return "format: Heron takes sample rates of 4000 to 48000 Hz";
  }
  const bool bShortRate = format.container == VOXPLAY_CONTAINER_HEAD ||
                          (format.container == VOXPLAY_CONTAINER_VEF && HasStream(format));
  if (bShortRate && dwRate > kMostHeadRate) {
    return std::string("format: ") + NameOfContainer(format.container) +
           " with a stream takes sample rates of up to 65535 Hz";
  }
  return {};
}

// Of the containers that say how many bytes a second takes.
std::string ByteRateProblem(const voxplay_format& format) {
  if (format.container > VOXPLAY_CONTAINER_VEF) return {};
  const std::uint64_t qwBits = HasStream(format) ? 16 : format.bits_per_sample;
  const std::uint64_t qwByteRate = std::uint64_t{format.sample_rate} * format.channels * qwBits / 8;
  if (qwByteRate <= std::numeric_limits<std::uint32_t>::max()) return {};
  return "format: a second would have 4 GiB or more";
}

std::string FlagProblem(const voxplay_format& format) {
  if (format.reserved != 0) return "format: the reserved member is not 0";
  constexpr std::uint32_t kKnown = VOXPLAY_WRITE_RF64;
  if ((format.flags & ~kKnown) != 0) return "format: a flag is not known";
  const bool bRf64 = (format.flags & VOXPLAY_WRITE_RF64) != 0;
  return bRf64 && format.container != VOXPLAY_CONTAINER_WAV ? "format: only WAV can become RF64"
                                                            : "";
}

}  // namespace

std::string FormatProblem(const voxplay_format& format) {
  const char* const pszContainer = NameOfContainer(format.container);
  if (pszContainer == nullptr) {
    return "format: " + std::to_string(format.container) + " is no container";
  }
  if (!HoldsCodec(format)) {
    return std::string("format: ") + pszContainer + " is not written with this codec";
  }
  if (format.channels == 0 || format.channels > kMostChannels) {
    return "format: there are 1 to 64 channels";
  }
  for (const auto pfnProblem :
       {WidthProblem, BitRateProblem, SampleRateProblem, ByteRateProblem, FlagProblem}) {
    if (std::string strProblem = pfnProblem(format); !strProblem.empty()) return strProblem;
  }
  return {};
}

}  // namespace api
