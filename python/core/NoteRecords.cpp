// SPDX-License-Identifier: Apache-2.0
#include "NoteRecords.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

namespace py = pybind11;

namespace python {
namespace {

py::bytes FourBytes(const char (&four)[4]) { return {&four[0], sizeof four}; }

void TakeFourBytes(char (&four)[4], const py::handle& bytes) {
  const auto text = py::cast<std::string>(bytes);
  std::memcpy(&four[0], text.data(), std::min(text.size(), sizeof four));
}

py::tuple TupleOf(const voxplay::Event& event) {
  return py::make_tuple(event.frame, event.main_command, event.sub_command, event.data,
                        py::bytes(event.description));
}
py::tuple TupleOf(const voxplay::Range& range) { return py::make_tuple(range.first, range.count); }
py::tuple TupleOf(const voxplay::Cue& cue) {
  return py::make_tuple(cue.id, cue.position, FourBytes(cue.chunk), cue.chunk_start,
                        cue.block_start, cue.sample_offset);
}
py::tuple TupleOf(const voxplay::Label& label) {
  return py::make_tuple(label.cue_id, FourBytes(label.type), py::bytes(label.text));
}
py::tuple TupleOf(const voxplay::RegionText& text) {
  return py::make_tuple(text.cue_id, text.count, FourBytes(text.purpose), text.country,
                        text.language, text.dialect, text.code_page, py::bytes(text.text));
}
py::tuple TupleOf(const voxplay::Loop& loop) {
  return py::make_tuple(loop.id, loop.type, loop.first, loop.last, loop.fraction, loop.play_count);
}
py::tuple TupleOf(const voxplay::Sampler& sampler) {
  return py::make_tuple(sampler.manufacturer, sampler.product, sampler.sample_period,
                        sampler.midi_unity_note, sampler.midi_pitch_fraction, sampler.smpte_format,
                        sampler.smpte_offset,
                        py::bytes(static_cast<const char*>(sampler.data), sampler.data_size));
}
py::tuple TupleOf(const voxplay::Chunk& chunk) {
  return py::make_tuple(FourBytes(chunk.id),
                        py::bytes(static_cast<const char*>(chunk.data), chunk.size));
}

template <typename Record>
py::list ListOf(const voxplay::Records<Record>& records) {
  py::list list;
  for (const Record record : records) list.append(TupleOf(record));
  return list;
}

template <typename T>
void Take(T& member, const py::tuple& tuple, std::size_t nIndex) {
  member = py::cast<T>(tuple[nIndex]);
}

// Bytes of Python stay where they are while their tuple lives.
const char* BytesAt(const py::tuple& tuple, std::size_t nIndex) {
  const char* const pszBytes = PyBytes_AsString(py::object(tuple[nIndex]).ptr());
  if (pszBytes == nullptr) throw py::error_already_set();
  return pszBytes;
}
std::size_t SizeAt(const py::tuple& tuple, std::size_t nIndex) {
  return py::len(py::object(tuple[nIndex]));
}

voxplay::Range RangeOf(const py::tuple& tuple) {
  voxplay::Range range{};
  Take(range.first, tuple, 0);
  Take(range.count, tuple, 1);
  return range;
}

void AddEvent(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::Event event{};
  Take(event.frame, tuple, 0);
  Take(event.main_command, tuple, 1);
  Take(event.sub_command, tuple, 2);
  Take(event.data, tuple, 3);
  event.description = BytesAt(tuple, 4);
  notes.add(event);
}

void AddCue(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::Cue cue{};
  Take(cue.id, tuple, 0);
  Take(cue.position, tuple, 1);
  TakeFourBytes(cue.chunk, tuple[2]);
  Take(cue.chunk_start, tuple, 3);
  Take(cue.block_start, tuple, 4);
  Take(cue.sample_offset, tuple, 5);
  notes.add(cue);
}

void AddLabel(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::Label label{};
  Take(label.cue_id, tuple, 0);
  TakeFourBytes(label.type, tuple[1]);
  label.text = BytesAt(tuple, 2);
  notes.add(label);
}

void AddRegionText(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::RegionText text{};
  Take(text.cue_id, tuple, 0);
  Take(text.count, tuple, 1);
  TakeFourBytes(text.purpose, tuple[2]);
  Take(text.country, tuple, 3);
  Take(text.language, tuple, 4);
  Take(text.dialect, tuple, 5);
  Take(text.code_page, tuple, 6);
  text.text = BytesAt(tuple, 7);
  notes.add(text);
}

void AddLoop(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::Loop loop{};
  Take(loop.id, tuple, 0);
  Take(loop.type, tuple, 1);
  Take(loop.first, tuple, 2);
  Take(loop.last, tuple, 3);
  Take(loop.fraction, tuple, 4);
  Take(loop.play_count, tuple, 5);
  notes.add(loop);
}

void AddChunk(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::Chunk chunk{};
  TakeFourBytes(chunk.id, tuple[0]);
  chunk.data = BytesAt(tuple, 1);
  chunk.size = SizeAt(tuple, 1);
  notes.add(chunk);
}

void SetSampler(voxplay::Notes& notes, const py::tuple& tuple) {
  voxplay::Sampler sampler{};
  Take(sampler.manufacturer, tuple, 0);
  Take(sampler.product, tuple, 1);
  Take(sampler.sample_period, tuple, 2);
  Take(sampler.midi_unity_note, tuple, 3);
  Take(sampler.midi_pitch_fraction, tuple, 4);
  Take(sampler.smpte_format, tuple, 5);
  Take(sampler.smpte_offset, tuple, 6);
  sampler.data = BytesAt(tuple, 7);
  sampler.data_size = SizeAt(tuple, 7);
  notes.set_sampler(sampler);
}

template <typename Add>
void ForEach(const py::dict& records, const char* pszKind, Add&& fnAdd) {
  for (const py::handle record : py::cast<py::list>(records[pszKind])) {
    fnAdd(py::cast<py::tuple>(record));
  }
}

}  // namespace

py::dict RecordsOf(const voxplay::NotesView& notes) {
  py::dict records;
  records["events"] = ListOf(notes.events());
  records["silence"] = ListOf(notes.silence());
  records["regions"] = ListOf(notes.regions());
  records["cues"] = ListOf(notes.cues());
  records["labels"] = ListOf(notes.labels());
  records["region_texts"] = ListOf(notes.region_texts());
  records["loops"] = ListOf(notes.loops());
  records["sampler"] = TupleOf(notes.sampler());
  records["chunks"] = ListOf(notes.chunks());
  return records;
}

voxplay::Notes NotesOf(const py::dict& records) {
  voxplay::Notes notes;
  ForEach(records, "events", [&](const py::tuple& tuple) { AddEvent(notes, tuple); });
  ForEach(records, "silence", [&](const py::tuple& tuple) { notes.add_silence(RangeOf(tuple)); });
  ForEach(records, "regions", [&](const py::tuple& tuple) { notes.add_region(RangeOf(tuple)); });
  ForEach(records, "cues", [&](const py::tuple& tuple) { AddCue(notes, tuple); });
  ForEach(records, "labels", [&](const py::tuple& tuple) { AddLabel(notes, tuple); });
  ForEach(records, "region_texts", [&](const py::tuple& tuple) { AddRegionText(notes, tuple); });
  ForEach(records, "loops", [&](const py::tuple& tuple) { AddLoop(notes, tuple); });
  ForEach(records, "chunks", [&](const py::tuple& tuple) { AddChunk(notes, tuple); });
  const py::object sampler = records["sampler"];
  if (!sampler.is_none()) SetSampler(notes, sampler);
  return notes;
}

}  // namespace python
