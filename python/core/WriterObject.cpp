// SPDX-License-Identifier: Apache-2.0
#include "WriterObject.h"

#include <optional>
#include <utility>

#include "Failure.h"
#include "NoteRecords.h"
#include "Samples.h"

namespace py = pybind11;

namespace python {
namespace {

std::uint32_t Member(const py::dict& members, const char* pszName) {
  return py::cast<std::uint32_t>(members[pszName]);
}

// Python only remembers a signal until somebody asks. pUser gets what its handler raises.
int EndAtSignal(void* pUser, std::uint64_t /*qwDone*/, std::uint64_t /*qwAll*/) {
  const C_LockedAgain locked;
  if (PyErr_CheckSignals() == 0) return 0;
  static_cast<std::optional<py::error_already_set>*>(pUser)->emplace();
  return 1;
}

}  // namespace

voxplay_format FormatOf(const py::dict& members) {
  voxplay_format format{};
  format.container = Member(members, "container");
  format.codec = Member(members, "codec");
  format.sample_rate = Member(members, "sample_rate");
  format.channels = Member(members, "channels");
  format.bits_per_sample = Member(members, "bits_per_sample");
  format.bit_rate = Member(members, "bit_rate");
  format.flags = Member(members, "flags");
  format.frames = py::cast<std::uint64_t>(members["frames"]);
  return format;
}

C_WriterObject::C_WriterObject(const std::string& strPath, const py::dict& format) {
  const voxplay_format asked = FormatOf(format);
  Begin(asked, [&] {
    return voxplay_writer_open_file(m_pWriter.get(), strPath.c_str(), &asked, sizeof asked);
  });
}

C_WriterObject::C_WriterObject(py::object file, const py::dict& format)
    : m_pFile(std::make_unique<C_FileObject>(std::move(file))) {
  const voxplay_format asked = FormatOf(format);
  const voxplay_output output = m_pFile->Output();
  Begin(asked,
        [&] { return voxplay_writer_open_output(m_pWriter.get(), &output, &asked, sizeof asked); });
}

template <typename Open>
void C_WriterObject::Begin(const voxplay_format& format, Open&& fnOpen) {
  m_pWriter.reset(voxplay_writer_new());
  if (!m_pWriter) throw std::bad_alloc();
  Take([&] { CheckHere(fnOpen()); });
  m_nChannels = format.channels;
}

template <typename Work>
auto C_WriterObject::Take(Work&& fnWork) {
  return TakeWithFile(m_turn, m_pFile, std::forward<Work>(fnWork));
}

// The sentence is that of the last call.
void C_WriterObject::CheckHere(voxplay_status eStatus) const {
  Check(eStatus, voxplay_writer_message(m_pWriter.get()));
}

void C_WriterObject::Write(const py::buffer& buffer) {
  const C_Samples samples(buffer, m_nChannels, false);
  Take([&] {
    voxplay_writer* const pWriter = m_pWriter.get();
    voxplay_status eStatus = VOXPLAY_OK;
    switch (samples.Type()) {
      case tagSampleType::kInt16:
        eStatus = voxplay_writer_write_s16(pWriter, samples.Data<std::int16_t>(), samples.Frames());
        break;
      case tagSampleType::kInt32:
        eStatus = voxplay_writer_write_s32(pWriter, samples.Data<std::int32_t>(), samples.Frames());
        break;
      case tagSampleType::kFloat:
        eStatus = voxplay_writer_write_f32(pWriter, samples.Data<float>(), samples.Frames());
        break;
    }
    CheckHere(eStatus);
  });
}

void C_WriterObject::SetNotes(const py::dict& records) {
  const voxplay::Notes notes = NotesOf(records);
  Take([&] { CheckHere(voxplay_writer_set_notes(m_pWriter.get(), notes.view().get())); });
}

py::list C_WriterObject::Finish() {
  std::optional<py::error_already_set> raised;
  try {
    Take([&] {
      CheckHere(voxplay_writer_on_progress(m_pWriter.get(), &EndAtSignal, &raised));
      CheckHere(voxplay_writer_finish(m_pWriter.get()));
    });
  } catch (const S_Failure&) {
    if (raised) throw py::error_already_set(std::move(*raised));
    throw;
  }
  py::list lost;
  for (std::size_t n = 0; n < voxplay_writer_lost_count(m_pWriter.get()); ++n) {
    lost.append(py::bytes(voxplay_writer_lost(m_pWriter.get(), n)));
  }
  return lost;
}

void C_WriterObject::Abandon() {
  Take([&] { voxplay_writer_abandon(m_pWriter.get()); });
}

}  // namespace python
