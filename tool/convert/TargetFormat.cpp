// SPDX-License-Identifier: Apache-2.0
#include "convert/TargetFormat.h"

#include <algorithm>
#include <array>

#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::uint32_t kKestrelRate = 16000;
constexpr std::uint32_t kLeastHeronRate = 4000;
constexpr std::uint32_t kMostHeronRate = 48000;

struct S_TargetKind {
  std::string_view name;
  voxplay_container eContainer;
  voxplay_codec eCodec;
  std::uint32_t dwBits;  // of Heron
  std::string_view extension;
};
// Of several kinds with an extension, the first one is meant by it. An SP header does not tell
// Heron of 2 and 3 bits from other codecs.
constexpr std::array<S_TargetKind, 9> kKinds = {{
    {"kestrel", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0, ".kst"},
    {"heron4", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, ".hrn"},
    {"heron2", VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON, 2, ".hrn"},
    {"heron3", VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON, 3, ".hrn"},
    {"heron5", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 5, ".hrn"},
    {"heron6", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 6, ".hrn"},
    {"wav", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 0, ".wav"},
    {"vemd", VOXPLAY_CONTAINER_VEMD, VOXPLAY_CODEC_PCM, 0, ".vemd"},
    {"vef", VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM, 0, ".vef"},
}};

bool IsCoded(const S_TargetKind& kind) { return kind.eCodec != VOXPLAY_CODEC_PCM; }

[[noreturn]] void Refuse(const std::string& strWhat) { throw C_UsageFailure(strWhat); }

const S_TargetKind& KindOf(std::string_view name) {
  const auto* const pKind = std::ranges::find(kKinds, name, &S_TargetKind::name);
  if (pKind == kKinds.end()) Refuse("there is no format " + std::string(name));
  return *pKind;
}

void TakeCodec(voxplay::Format& format, const std::string& strCodec) {
  if (strCodec.empty()) return;
  if (format.container != VOXPLAY_CONTAINER_VEF) Refuse("--codec is for VEF files only");
  if (strCodec == "pcm") return;
  const S_TargetKind& kind = KindOf(strCodec);
  format.codec = static_cast<std::uint32_t>(kind.eCodec);
  format.bits_per_sample = kind.dwBits;
}

void TakeHeader(voxplay::Format& format, const std::string& strHeader) {
  if (strHeader.empty()) return;
  if (!HasStream(format) || format.container == VOXPLAY_CONTAINER_VEF) {
    Refuse("--header is for files of Kestrel and Heron only");
  }
  format.container = strHeader == "sp"      ? VOXPLAY_CONTAINER_SP
                     : strHeader == "codec" ? VOXPLAY_CONTAINER_HEAD
                                            : VOXPLAY_CONTAINER_BARE;
}

void TakeBits(voxplay::Format& format, const std::string& strBits) {
  if (strBits.empty()) return;
  if (HasStream(format)) Refuse("--bits is for samples that are not coded");
  if (strBits == "float") {
    format.codec = VOXPLAY_CODEC_FLOAT;
    format.bits_per_sample = 32;
  } else {
    format.bits_per_sample = static_cast<std::uint32_t>(std::stoul(strBits));
  }
}

void TakeRates(voxplay::Format& format, const S_FormatWords& words) {
  format.bit_rate = words.dwBitRate;
  format.sample_rate = words.dwRate;
  if (format.codec != VOXPLAY_CODEC_KESTREL) return;
  if (words.dwRate != 0 && words.dwRate != kKestrelRate) {
    Refuse("--rate: Kestrel has " + std::to_string(kKestrelRate) + " Hz");
  }
  format.sample_rate = kKestrelRate;
}

std::uint32_t RateFor(const voxplay::Format& format, std::uint32_t dwRate) {
  if (format.sample_rate != 0) return format.sample_rate;
  if (format.codec != VOXPLAY_CODEC_HERON) return dwRate;
  return std::clamp(dwRate, kLeastHeronRate, kMostHeronRate);
}

// The narrowest width that holds all bits of the source.
std::uint32_t WidthFor(std::uint32_t dwBits) {
  return std::clamp<std::uint32_t>((dwBits + 7) / 8 * 8, 8, 32);
}

void TakeWidthOf(voxplay::Format& format, const S_SoundInfo& info) {
  if (HasStream(format) || format.bits_per_sample != 0) return;
  if (info.dwBits != 0) {
    format.bits_per_sample = WidthFor(info.dwBits);
  } else if (format.container == VOXPLAY_CONTAINER_WAV) {
    format.codec = VOXPLAY_CODEC_FLOAT;
    format.bits_per_sample = 32;
  } else {
    format.bits_per_sample = 16;
  }
}

// With what the source will say later.
void Check(voxplay::Format format) {
  S_SoundInfo usual;
  usual.dwRate = kKestrelRate;
  usual.dwBits = 16;
  const std::string strProblem = voxplay::problem(FormatFor(format, usual, 1));
  if (!strProblem.empty()) Refuse(strProblem.substr(strProblem.find(": ") + 2));
}

template <typename Wanted>
std::vector<std::string> Names(std::vector<std::string> names, Wanted&& wanted) {
  for (const S_TargetKind& kind : kKinds) {
    if (wanted(kind)) names.emplace_back(kind.name);
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace

std::vector<std::string> FormatNames() {
  return Names({}, [](const S_TargetKind&) { return true; });
}

std::vector<std::string> CodecNames() {
  return Names({"pcm"}, [](const S_TargetKind& kind) { return IsCoded(kind); });
}

std::string FormatOfExtension(std::string_view extension) {
  std::string strLower(extension);
  for (char& ch : strLower) {
    if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
  }
  const auto* const pKind = std::ranges::find(kKinds, strLower, &S_TargetKind::extension);
  return pKind == kKinds.end() ? "" : std::string(pKind->name);
}

std::string_view ExtensionOfFormat(const std::string& strTo) { return KindOf(strTo).extension; }

voxplay::Format FormatOf(const S_FormatWords& words) {
  const S_TargetKind& kind = KindOf(words.strTo);
  voxplay::Format format{};
  format.container = static_cast<std::uint32_t>(kind.eContainer);
  format.codec = static_cast<std::uint32_t>(kind.eCodec);
  format.bits_per_sample = kind.dwBits;
  TakeCodec(format, words.strCodec);
  TakeHeader(format, words.strHeader);
  TakeBits(format, words.strBits);
  TakeRates(format, words);
  Check(format);
  return format;
}

voxplay::Format FormatFor(voxplay::Format format, const S_SoundInfo& info,
                          std::uint32_t dwChannels) {
  format.channels = dwChannels;
  format.sample_rate = RateFor(format, info.dwRate);
  TakeWidthOf(format, info);
  return format;
}

bool HasStream(const voxplay::Format& format) noexcept {
  return format.codec == VOXPLAY_CODEC_KESTREL || format.codec == VOXPLAY_CODEC_HERON;
}

}  // namespace tool
