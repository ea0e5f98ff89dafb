// SPDX-License-Identifier: Apache-2.0
#include "tags/MarkChunks.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "sound/ShortSound.h"

namespace tool {
namespace {

// Shorter chunks of these names are no such chunks to the library, which keeps them as they are.
constexpr std::size_t kCueBytes = 4;
constexpr std::size_t kSamplerBytes = 36;
constexpr std::string_view kLabels = "adtl";

std::string_view IDOf(const voxplay::ChunkPlace& chunk) { return {chunk.id, sizeof chunk.id}; }

// fnForm gives the first four bytes of the content.
template <typename Form>
bool IsMarkChunk(const voxplay::ChunkPlace& chunk, Form&& fnForm) {
  if (IDOf(chunk) == "cue ") return chunk.size >= kCueBytes;
  if (IDOf(chunk) == "smpl") return chunk.size >= kSamplerBytes;
  return IDOf(chunk) == "LIST" && chunk.held >= kLabels.size() && fnForm() == kLabels;
}

std::span<const std::byte> ContentOf(const voxplay::ChunkPlace& chunk,
                                     std::span<const std::byte> file) {
  return file.subspan(static_cast<std::size_t>(chunk.offset), static_cast<std::size_t>(chunk.held));
}

// Marks are written in the same way whatever the samples are.
voxplay::Format FormatOf(const voxplay::Info& info) {
  voxplay::Format format{};
  format.container = info.container;
  format.codec = VOXPLAY_CODEC_PCM;
  format.sample_rate = std::max(info.sample_rate, std::uint32_t{1});
  format.channels = 1;
  format.bits_per_sample = 8;
  return format;
}

}  // namespace

bool HoldsMarks(const voxplay::ChunkPlace& chunk, C_FileBytes& file) {
  return IsMarkChunk(chunk, [&] {
    std::array<char, kLabels.size()> form{};
    file.Seek(chunk.offset);
    const std::int64_t nRead = file.Read(form.data(), form.size());
    return std::string(form.data(), static_cast<std::size_t>(std::max<std::int64_t>(nRead, 0)));
  });
}

S_MarkChunks MarkChunksOf(const voxplay::NotesView& notes, const voxplay::Info& info) {
  S_ShortSound sound = WriteShortSound(FormatOf(info), notes);
  const voxplay::Reader reader(sound.bytes);
  S_MarkChunks marks;
  for (const voxplay::ChunkPlace& chunk : reader.chunk_places()) {
    const auto content = ContentOf(chunk, sound.bytes);
    const bool bMarks = IsMarkChunk(chunk, [&] {
      return std::string_view(reinterpret_cast<const char*>(content.data()), kLabels.size());
    });
    if (!bMarks) continue;
    marks.chunks.push_back({std::string(IDOf(chunk)), {content.begin(), content.end()}});
  }
  marks.lost = std::move(sound.lost);
  return marks;
}

}  // namespace tool
