// SPDX-License-Identifier: Apache-2.0
//
// How a Heron stream is put together. Little-endian:
//
//   offset size  field
//   0      1     mode code: the variant, see the table in the .cpp
//   1      3     offset of the event stream from the start of the stream, 0 without events
//   4      n     coded audio (heron/SoundCoder.h)
//   4 + n  m     event stream (HeronEventStream.h), to the end
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "interface/AudioFileType.h"

namespace heronstream {

constexpr std::size_t kHeadBytes = 4;

struct S_Variant {
  tagAudioFileType eType;
  int nBitDepth;  // bits per sample
  std::uint8_t byModeCode;
};

// The variant of a file type; empty when dwType is not a Heron type.
std::optional<S_Variant> VariantOfType(unsigned int dwType);

// The head of a stream whose coded audio ends at qwAudioEnd, counted from the start of the stream,
// and is followed by qwEvents bytes of events. Empty when the offset of the events does not fit in
// its 24 bits.
std::optional<std::uint32_t> MakeHead(const S_Variant& variant, std::uint64_t qwAudioEnd,
                                      std::uint64_t qwEvents);

// Where the coded audio of a stream ends, counted from the start of the stream.
struct S_AudioEnd {
  S_Variant variant;
  std::uint64_t qwEnd;  // at least kHeadBytes
};

// The same as FindAudio for a stream of qwStream bytes, at least kHeadBytes, of which only the head
// is read.
std::optional<S_AudioEnd> FindAudioEnd(std::uint32_t dwHead, std::uint64_t qwStream);

// Where the head says that the events begin; 0 without events.
std::uint64_t EventsAt(std::uint32_t dwHead);

struct S_Audio {
  S_Variant variant;
  std::span<const unsigned char> coded;
};

// The audio in a stream, whose bytes the result refers to. Where the stream ends before its events
// begin, it is what is left of the audio. Empty for a stream that no encoder writes: one that is
// shorter than its head, has an unknown mode, or has events that would begin inside the head.
std::optional<S_Audio> FindAudio(std::span<const unsigned char> stream);

}  // namespace heronstream
