// SPDX-License-Identifier: Apache-2.0
#include "calls/NoteRecords.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "calls/SizedRecord.h"
#include "notes/FourCC.h"

namespace api {
namespace {

void Copy(const S_FourCC& from, char (&to)[4]) noexcept { std::copy(from.begin(), from.end(), to); }

S_FourCC IDOf(const char (&id)[4]) noexcept { return {id[0], id[1], id[2], id[3]}; }

// Whether these are bytes that a RIFF chunk can hold.
bool CanBeData(const void* pData, std::size_t cbData) noexcept {
  if (pData == nullptr) return cbData == 0;
  return std::in_range<std::uint32_t>(cbData);
}

std::vector<std::uint8_t> BytesOf(const void* pData, std::size_t cbData) {
  const auto* const pbyData = static_cast<const std::uint8_t*>(pData);
  return {pbyData, pbyData + cbData};
}

}  // namespace

voxplay_event RecordOf(const S_NoteEvent& event) noexcept {
  return {event.qwFrame, event.wMain, event.wSub, event.dwData, event.strDescription.c_str()};
}

voxplay_range RecordOf(const S_NoteRange& range) noexcept { return {range.qwFirst, range.qwCount}; }

voxplay_cue RecordOf(const S_NoteCue& cue) noexcept {
  voxplay_cue record{};
  record.id = cue.dwID;
  record.position = cue.dwPosition;
  Copy(cue.chunk, record.chunk);
  record.chunk_start = cue.dwChunkStart;
  record.block_start = cue.dwBlockStart;
  record.sample_offset = cue.dwSampleOffset;
  return record;
}

voxplay_label RecordOf(const S_NoteLabel& label) noexcept {
  voxplay_label record{};
  record.cue_id = label.dwCueID;
  Copy(label.type, record.type);
  record.text = label.strText.c_str();
  return record;
}

voxplay_region_text RecordOf(const S_NoteRegionText& text) noexcept {
  voxplay_region_text record{};
  record.cue_id = text.dwCueID;
  record.count = text.dwCount;
  Copy(text.purpose, record.purpose);
  record.country = text.wCountry;
  record.language = text.wLanguage;
  record.dialect = text.wDialect;
  record.code_page = text.wCodePage;
  record.text = text.strText.c_str();
  return record;
}

voxplay_loop RecordOf(const S_NoteLoop& loop) noexcept {
  return {loop.dwID, loop.dwType, loop.dwFirst, loop.dwLast, loop.dwFraction, loop.dwPlayCount};
}

voxplay_sampler RecordOf(const S_NoteSampler& sampler) noexcept {
  voxplay_sampler record{};
  record.manufacturer = sampler.dwManufacturer;
  record.product = sampler.dwProduct;
  record.sample_period = sampler.dwSamplePeriod;
  record.midi_unity_note = sampler.dwMidiUnityNote;
  record.midi_pitch_fraction = sampler.dwMidiPitchFraction;
  record.smpte_format = sampler.dwSmpteFormat;
  record.smpte_offset = sampler.dwSmpteOffset;
  record.data = sampler.data.empty() ? nullptr : sampler.data.data();
  record.data_size = sampler.data.size();
  return record;
}

voxplay_chunk RecordOf(const S_NoteChunk& chunk) noexcept {
  voxplay_chunk record{};
  Copy(chunk.id, record.id);
  record.data = chunk.data.empty() ? nullptr : chunk.data.data();
  record.size = chunk.data.size();
  return record;
}

std::optional<S_NoteEvent> NoteOf(const voxplay_event* pRecord, std::size_t cbRecord) {
  auto record = CopyIn(pRecord, &voxplay_event::frame, cbRecord);
  if (!record) return std::nullopt;
  DropCutPointer(*record, &voxplay_event::description, cbRecord);
  const char* pszDescription = record->description == nullptr ? "" : record->description;
  return S_NoteEvent{record->frame, record->main_command, record->sub_command, record->data,
                     pszDescription};
}

std::optional<S_NoteRange> NoteOf(const voxplay_range* pRecord, std::size_t cbRecord) {
  const auto record = CopyIn(pRecord, &voxplay_range::first, cbRecord);
  if (!record) return std::nullopt;
  return S_NoteRange{record->first, record->count};
}

std::optional<S_NoteCue> NoteOf(const voxplay_cue* pRecord, std::size_t cbRecord) {
  const auto record = CopyIn(pRecord, &voxplay_cue::id, cbRecord);
  if (!record) return std::nullopt;
  return S_NoteCue{record->id,          record->position,    IDOf(record->chunk),
                   record->chunk_start, record->block_start, record->sample_offset};
}

std::optional<S_NoteLabel> NoteOf(const voxplay_label* pRecord, std::size_t cbRecord) {
  auto record = CopyIn(pRecord, &voxplay_label::cue_id, cbRecord);
  if (!record) return std::nullopt;
  DropCutPointer(*record, &voxplay_label::text, cbRecord);
  const S_FourCC type = IDOf(record->type);
  if (record->text == nullptr || (type != FourCC("labl") && type != FourCC("note"))) {
    return std::nullopt;
  }
  return S_NoteLabel{record->cue_id, type, record->text};
}

std::optional<S_NoteRegionText> NoteOf(const voxplay_region_text* pRecord, std::size_t cbRecord) {
  auto record = CopyIn(pRecord, &voxplay_region_text::cue_id, cbRecord);
  if (!record) return std::nullopt;
  DropCutPointer(*record, &voxplay_region_text::text, cbRecord);
  if (record->text == nullptr) return std::nullopt;
  return S_NoteRegionText{record->cue_id,   record->count,   IDOf(record->purpose), record->country,
                          record->language, record->dialect, record->code_page,     record->text};
}

std::optional<S_NoteLoop> NoteOf(const voxplay_loop* pRecord, std::size_t cbRecord) {
  const auto record = CopyIn(pRecord, &voxplay_loop::id, cbRecord);
  if (!record) return std::nullopt;
  return S_NoteLoop{record->id,   record->type,     record->first,
                    record->last, record->fraction, record->play_count};
}

std::optional<S_NoteSampler> NoteOf(const voxplay_sampler* pRecord, std::size_t cbRecord) {
  auto record = CopyIn(pRecord, &voxplay_sampler::manufacturer, cbRecord);
  if (!record) return std::nullopt;
  DropCutPointer(*record, &voxplay_sampler::data, cbRecord);
  if (!CanBeData(record->data, record->data_size)) return std::nullopt;
  S_NoteSampler sampler;
  sampler.bPresent = true;
  sampler.dwManufacturer = record->manufacturer;
  sampler.dwProduct = record->product;
  sampler.dwSamplePeriod = record->sample_period;
  sampler.dwMidiUnityNote = record->midi_unity_note;
  sampler.dwMidiPitchFraction = record->midi_pitch_fraction;
  sampler.dwSmpteFormat = record->smpte_format;
  sampler.dwSmpteOffset = record->smpte_offset;
  sampler.data = BytesOf(record->data, record->data_size);
  return sampler;
}

std::optional<S_NoteChunk> NoteOf(const voxplay_chunk* pRecord, std::size_t cbRecord) {
  auto record = CopyIn(pRecord, &voxplay_chunk::id, cbRecord);
  if (!record) return std::nullopt;
  DropCutPointer(*record, &voxplay_chunk::data, cbRecord);
  // Readers pass over zeros before the identifier of a chunk.
  if (record->id[0] == 0 || !CanBeData(record->data, record->size)) return std::nullopt;
  return S_NoteChunk{IDOf(record->id), BytesOf(record->data, record->size)};
}

}  // namespace api
