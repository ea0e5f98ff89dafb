// SPDX-License-Identifier: Apache-2.0
#include "codec/HeronStream.h"

#include <algorithm>
#include <array>

#include "ByteReader.h"

namespace heronstream {
namespace {

constexpr std::array<S_Variant, 5> kVariants = {{{AUDIO_FILE_HERON_4BIT, 4, 1},
                                                 {AUDIO_FILE_HERON_5BIT, 5, 2},
                                                 {AUDIO_FILE_HERON_6BIT, 6, 3},
                                                 {AUDIO_FILE_HERON_2BIT, 2, 4},
                                                 {AUDIO_FILE_HERON_3BIT, 3, 5}}};
constexpr unsigned int kOffsetShift = 8;
constexpr std::uint64_t kMaxOffset = 0xFFFFFF;

template <typename Value>
std::optional<S_Variant> Find(Value S_Variant::*pMember, Value value) {
  const auto* const pFound = std::ranges::find(kVariants, value, pMember);
  return pFound == kVariants.end() ? std::nullopt : std::optional(*pFound);
}

}  // namespace

std::optional<S_Variant> VariantOfType(unsigned int dwType) {
  return Find(&S_Variant::eType, static_cast<tagAudioFileType>(dwType));
}

std::optional<std::uint32_t> MakeHead(const S_Variant& variant, std::uint64_t qwAudioEnd,
                                      std::uint64_t qwEvents) {
  if (qwEvents == 0) return variant.byModeCode;
  if (qwAudioEnd > kMaxOffset) return std::nullopt;
  return variant.byModeCode | static_cast<std::uint32_t>(qwAudioEnd << kOffsetShift);
}

std::uint64_t EventsAt(std::uint32_t dwHead) { return dwHead >> kOffsetShift; }

// A stream that ends before its events begin has lost its end, and its audio ends with it.
std::optional<S_AudioEnd> FindAudioEnd(std::uint32_t dwHead, std::uint64_t qwStream) {
  const auto variant = Find(&S_Variant::byModeCode, static_cast<std::uint8_t>(dwHead));
  const std::uint64_t qwOffset = EventsAt(dwHead);
  if (!variant || (qwOffset != 0 && qwOffset < kHeadBytes)) return std::nullopt;
  return S_AudioEnd{*variant, qwOffset == 0 ? qwStream : std::min(qwOffset, qwStream)};
}

std::optional<S_Audio> FindAudio(std::span<const unsigned char> stream) {
  vcm::C_ByteReader reader(stream);
  const std::uint32_t dwHead = reader.U32();
  if (!reader.Ok()) return std::nullopt;
  const auto audio = FindAudioEnd(dwHead, stream.size());
  if (!audio) return std::nullopt;
  return S_Audio{audio->variant,
                 stream.first(static_cast<std::size_t>(audio->qwEnd)).subspan(kHeadBytes)};
}

}  // namespace heronstream
