// SPDX-License-Identifier: Apache-2.0
//
// Notes as the records of voxplay.h, and the other way round.
#pragma once

#include <cstddef>
#include <optional>

#include "notes/Notes.h"
#include "voxplay.h"

namespace api {

// Pointers in the records point into the notes.
voxplay_event RecordOf(const S_NoteEvent& event) noexcept;
voxplay_range RecordOf(const S_NoteRange& range) noexcept;
voxplay_cue RecordOf(const S_NoteCue& cue) noexcept;
voxplay_label RecordOf(const S_NoteLabel& label) noexcept;
voxplay_region_text RecordOf(const S_NoteRegionText& text) noexcept;
voxplay_loop RecordOf(const S_NoteLoop& loop) noexcept;
voxplay_sampler RecordOf(const S_NoteSampler& sampler) noexcept;
voxplay_chunk RecordOf(const S_NoteChunk& chunk) noexcept;

// Copies of the caller's records, which are cbRecord bytes. Empty for a null pointer, a size below
// that of the first member, and values outside their ranges.
std::optional<S_NoteEvent> NoteOf(const voxplay_event* pRecord, std::size_t cbRecord);
std::optional<S_NoteRange> NoteOf(const voxplay_range* pRecord, std::size_t cbRecord);
std::optional<S_NoteCue> NoteOf(const voxplay_cue* pRecord, std::size_t cbRecord);
std::optional<S_NoteLabel> NoteOf(const voxplay_label* pRecord, std::size_t cbRecord);
std::optional<S_NoteRegionText> NoteOf(const voxplay_region_text* pRecord, std::size_t cbRecord);
std::optional<S_NoteLoop> NoteOf(const voxplay_loop* pRecord, std::size_t cbRecord);
std::optional<S_NoteSampler> NoteOf(const voxplay_sampler* pRecord, std::size_t cbRecord);
std::optional<S_NoteChunk> NoteOf(const voxplay_chunk* pRecord, std::size_t cbRecord);

}  // namespace api
