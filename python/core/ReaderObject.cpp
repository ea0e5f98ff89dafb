// SPDX-License-Identifier: Apache-2.0
#include "ReaderObject.h"

#include <new>
#include <utility>
#include <vector>

#include "Failure.h"
#include "NoteRecords.h"
#include "Samples.h"

namespace py = pybind11;

namespace python {
namespace {

struct S_Read {
  voxplay_status eStatus;
  std::size_t nFrames;
};

S_Read Read(voxplay_reader* pReader, const C_Samples& samples) {
  S_Read read{};
  switch (samples.Type()) {
    case tagSampleType::kInt16:
      read.eStatus = voxplay_reader_read_s16(pReader, samples.Data<std::int16_t>(),
                                             samples.Frames(), &read.nFrames);
      break;
    case tagSampleType::kInt32:
      read.eStatus = voxplay_reader_read_s32(pReader, samples.Data<std::int32_t>(),
                                             samples.Frames(), &read.nFrames);
      break;
    case tagSampleType::kFloat:
      read.eStatus =
          voxplay_reader_read_f32(pReader, samples.Data<float>(), samples.Frames(), &read.nFrames);
      break;
  }
  return read;
}

}  // namespace

C_ReaderObject::C_ReaderObject(const std::string& strPath, std::uint32_t dwFlags) {
  Begin([&](voxplay_reader* pReader) {
    return voxplay_reader_open_file(pReader, strPath.c_str(), dwFlags);
  });
}

C_ReaderObject::C_ReaderObject(const py::buffer& bytes, std::uint32_t dwFlags)
    : m_bytes(bytes.request()) {
  if (!PyBuffer_IsContiguous(m_bytes->view(), 'C')) {
    throw py::value_error("the bytes are not one after the other in memory");
  }
  Begin([&](voxplay_reader* pReader) {
    return voxplay_reader_open_memory(pReader, m_bytes->ptr,
                                      static_cast<std::size_t>(m_bytes->size * m_bytes->itemsize),
                                      dwFlags);
  });
}

C_ReaderObject::C_ReaderObject(py::object file, std::uint32_t dwFlags)
    : m_pFile(std::make_unique<C_FileObject>(std::move(file))) {
  const voxplay_input input = m_pFile->Input();
  Begin(
      [&](voxplay_reader* pReader) { return voxplay_reader_open_input(pReader, &input, dwFlags); });
}

template <typename Open>
void C_ReaderObject::Begin(Open&& fnOpen) {
  m_pReader.reset(voxplay_reader_new());
  if (!m_pReader) throw std::bad_alloc();
  Take([&] { CheckHere(fnOpen(m_pReader.get())); });
  voxplay_info info{};
  Check(voxplay_reader_info(m_pReader.get(), &info, sizeof info), "");
  m_nChannels = info.channels;
}

template <typename Work>
auto C_ReaderObject::Take(Work&& fnWork) {
  // Another thread may close it while this one waits.
  return TakeWithFile(m_turn, m_pFile, [&] {
    CheckOpen();
    return fnWork();
  });
}

void C_ReaderObject::CheckOpen() const {
  if (!m_pReader) throw S_Failure{VOXPLAY_WRONG_STATE, "the sound is closed", 0};
}

// The sentence is that of the last call.
void C_ReaderObject::CheckHere(voxplay_status eStatus, std::size_t nFramesRead) const {
  Check(eStatus, voxplay_reader_message(m_pReader.get()), nFramesRead);
}

py::dict C_ReaderObject::Info() {
  voxplay_info info{};
  Take([&] { Check(voxplay_reader_info(m_pReader.get(), &info, sizeof info), ""); });
  py::dict members;
  members["container"] = info.container;
  members["codec"] = info.codec;
  members["sample_rate"] = info.sample_rate;
  members["channels"] = info.channels;
  members["frames"] = info.frames;
  members["bits_per_sample"] = info.bits_per_sample;
  members["stored_bits"] = info.stored_bits;
  members["bit_rate"] = info.bit_rate;
  members["has_stream"] = info.has_stream != 0;
  members["damaged_frames"] = info.damaged_frames;
  members["claimed_frames"] = info.claimed_frames;
  members["is_cut"] = info.is_cut != 0;
  return members;
}

py::dict C_ReaderObject::Headers() {
  voxplay_headers headers{};
  Take([&] { Check(voxplay_reader_headers(m_pReader.get(), &headers, sizeof headers), ""); });
  py::dict all;
  if (headers.has_sp != 0) {
    py::dict sp;
    sp["version"] = headers.sp_version;
    sp["identifier"] = headers.sp_identifier;
    sp["format"] = headers.sp_format;
    sp["sample_rate"] = headers.sp_sample_rate;
    sp["value_30"] = headers.sp_value_30;
    sp["value_34"] = headers.sp_value_34;
    sp["value_36"] = headers.sp_value_36;
    sp["value_37"] = headers.sp_value_37;
    all["sp"] = sp;
  }
  if (headers.has_head != 0) {
    py::dict head;
    head["type"] = headers.head_type;
    head["sample_rate"] = headers.head_sample_rate;
    head["version"] = headers.head_version;
    all["head"] = head;
  }
  if (headers.has_vafm != 0) {
    py::dict vafm;
    vafm["version"] = headers.vafm_version;
    vafm["type"] = headers.vafm_type;
    vafm["sample_rate"] = headers.vafm_sample_rate;
    vafm["bit_rate"] = headers.vafm_bit_rate;
    vafm["channels"] = headers.vafm_channels;
    vafm["platform"] = headers.vafm_platform;
    all["vafm"] = vafm;
  }
  return all;
}

py::list C_ReaderObject::Chunks() {
  std::vector<voxplay_chunk_place> places;
  Take([&] {
    places.resize(voxplay_reader_chunk_count(m_pReader.get()));
    for (std::size_t n = 0; n < places.size(); ++n) {
      Check(voxplay_reader_chunk(m_pReader.get(), n, &places[n], sizeof places[n]), "");
    }
  });
  py::list list;
  for (const voxplay_chunk_place& place : places) {
    list.append(py::make_tuple(py::bytes(&place.id[0], sizeof place.id), place.offset, place.size,
                               place.held));
  }
  return list;
}

py::dict C_ReaderObject::Notes() {
  // A copy, because reading on may change those of the reader while Python makes its objects.
  const auto notes = Take(
      [&] { return voxplay::Notes(voxplay::NotesView(voxplay_reader_notes(m_pReader.get()))); });
  return RecordsOf(notes);
}

std::size_t C_ReaderObject::ReadInto(const py::buffer& buffer) {
  const C_Samples samples(buffer, m_nChannels, true);
  return Take([&] {
    const S_Read read = Read(m_pReader.get(), samples);
    CheckHere(read.eStatus, read.nFrames);
    return read.nFrames;
  });
}

void C_ReaderObject::Seek(std::uint64_t qwFrame) {
  Take([&] { CheckHere(voxplay_reader_seek(m_pReader.get(), qwFrame)); });
}

std::uint64_t C_ReaderObject::Tell() {
  return Take([&] { return voxplay_reader_tell(m_pReader.get()); });
}

void C_ReaderObject::Close() {
  // These end when this thread has Python's lock again.
  std::unique_ptr<C_FileObject> pFile;
  std::optional<py::buffer_info> bytes;
  m_turn.Take([&] {
    m_pReader.reset();
    pFile.swap(m_pFile);
    bytes.swap(m_bytes);
  });
}

}  // namespace python
