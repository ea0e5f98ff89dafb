// SPDX-License-Identifier: Apache-2.0
//
// The writer of voxplay.h.
#include "writer/Writer.h"

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "calls/CallerText.h"
#include "calls/Guard.h"
#include "calls/NotesObject.h"
#include "calls/SizedRecord.h"
#include "target/ByteTarget.h"

struct voxplay_writer {
  std::unique_ptr<api::C_Writer> open;  // null when nothing is
  std::uint32_t dwChannels = 0;
  std::vector<std::string> lost;
  bool bBusy = false;  // within a function, which may be calling one of the program's
  voxplay_progress pfnProgress = nullptr;
  void* pProgressUser = nullptr;
  std::string strName;
  std::string strMessage;
};

namespace {

std::optional<voxplay_format> FormatOf(const voxplay_format* pFormat, std::size_t cbFormat) {
  return api::CopyIn(pFormat, &voxplay_format::container, cbFormat);
}

void ThrowProblem(const voxplay_format& format) {
  const std::string strProblem = api::FormatProblem(format);
  if (!strProblem.empty()) throw api::C_Failure(VOXPLAY_UNSUPPORTED, strProblem);
}

// Refuses an argument. What is open stays open.
voxplay_status Refuse(voxplay_writer* pWriter, const char* pszWhy) {
  if (pWriter == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return api::Guarded(&pWriter->strMessage, pWriter->strName,
                      [&] { throw api::C_Failure(VOXPLAY_BAD_ARGUMENT, pszWhy); });
}

// Refuses a call from one of the program's own functions.
voxplay_status RefuseWhileBusy(voxplay_writer* pWriter) {
  return api::Guarded(&pWriter->strMessage, pWriter->strName, [] {
    throw api::C_Failure(VOXPLAY_WRONG_STATE, "writing: one of its functions is still working");
  });
}

// Does work in which functions of the program may be called. A function of the writer that is
// called from there is refused.
template <typename Work>
voxplay_status Guarded(voxplay_writer* pWriter, Work&& work) {
  if (pWriter->bBusy) return RefuseWhileBusy(pWriter);
  pWriter->bBusy = true;
  const voxplay_status eStatus =
      api::Guarded(&pWriter->strMessage, pWriter->strName, std::forward<Work>(work));
  pWriter->bBusy = false;
  return eStatus;
}

// The object hears of changes of the function as well.
api::S_ProgressFunction ProgressOf(voxplay_writer* pWriter) {
  return [pWriter](std::uint64_t qwDone, std::uint64_t qwAll) {
    return pWriter->pfnProgress == nullptr ||
           pWriter->pfnProgress(pWriter->pProgressUser, qwDone, qwAll) == 0;
  };
}

// Begins a sound at what a function gives as a target.
template <typename MakeTarget>
voxplay_status Open(voxplay_writer* pWriter, const char* pszName, const voxplay_format& format,
                    MakeTarget&& fnTarget) {
  if (pWriter->bBusy) return RefuseWhileBusy(pWriter);
  voxplay_writer_abandon(pWriter);
  // The name may be one of these sentences.
  const voxplay_status eNamed =
      api::Guarded(&pWriter->strMessage, "", [&] { pWriter->strName = pszName; });
  if (eNamed != VOXPLAY_OK) return eNamed;
  pWriter->lost.clear();
  pWriter->strMessage.clear();
  return Guarded(pWriter, [&] {
    ThrowProblem(format);
    auto writer = api::C_Writer::Open(fnTarget(), format);
    writer->OnProgress(ProgressOf(pWriter));
    pWriter->dwChannels = format.channels;
    pWriter->open = std::move(writer);
  });
}

// Does something with what is open.
template <typename Work>
voxplay_status WithOpen(voxplay_writer* pWriter, Work&& work) {
  if (pWriter == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return Guarded(pWriter, [&] {
    if (!pWriter->open) throw api::C_Failure(VOXPLAY_WRONG_STATE, "writer: nothing is open");
    work(*pWriter->open);
  });
}

template <typename Sample>
voxplay_status Write(voxplay_writer* pWriter, const Sample* pSamples, std::size_t nCount) {
  if (pWriter == nullptr || (pSamples == nullptr && nCount != 0)) {
    return Refuse(pWriter, "samples: a null pointer");
  }
  return WithOpen(pWriter, [&](api::C_Writer& writer) {
    if (nCount > SIZE_MAX / sizeof(Sample) / pWriter->dwChannels) {
      throw api::C_Failure(VOXPLAY_BAD_ARGUMENT, "samples: no buffer can hold so many");
    }
    writer.Write(std::span(pSamples, nCount * pWriter->dwChannels));
  });
}

}  // namespace

voxplay_status voxplay_format_check(const voxplay_format* format, size_t size, char* text,
                                    size_t text_size) {
  if (text_size != 0 && text != nullptr) *text = '\0';
  const auto known = FormatOf(format, size);
  if (!known || (text == nullptr && text_size != 0)) return VOXPLAY_BAD_ARGUMENT;
  std::string strProblem;
  const voxplay_status eStatus =
      api::Guarded(nullptr, "", [&] { strProblem = api::FormatProblem(*known); });
  if (eStatus != VOXPLAY_OK) return eStatus;
  api::CopyText(strProblem, text, text_size);
  return strProblem.empty() ? VOXPLAY_OK : VOXPLAY_UNSUPPORTED;
}

voxplay_writer* voxplay_writer_new(void) { return new (std::nothrow) voxplay_writer; }

void voxplay_writer_free(voxplay_writer* writer) { delete writer; }

voxplay_status voxplay_writer_open_file(voxplay_writer* writer, const char* path,
                                        const voxplay_format* format, size_t size) {
  const auto known = FormatOf(format, size);
  if (writer == nullptr || path == nullptr || !known) {
    return Refuse(writer, "path or format: a null pointer");
  }
  return Open(writer, path, *known, [&] { return api::OpenFileTarget(writer->strName.c_str()); });
}

voxplay_status voxplay_writer_open_output(voxplay_writer* writer, const voxplay_output* output,
                                          const voxplay_format* format, size_t size) {
  const auto known = FormatOf(format, size);
  if (writer == nullptr || output == nullptr || output->write == nullptr || !known) {
    return Refuse(writer, "output or format: a null pointer, or no function to write with");
  }
  return Open(writer, "output", *known, [&] { return api::OpenOutputTarget(*output); });
}

const char* voxplay_writer_message(const voxplay_writer* writer) {
  return writer == nullptr ? "" : writer->strMessage.c_str();
}

voxplay_status voxplay_writer_on_progress(voxplay_writer* writer, voxplay_progress progress,
                                          void* user) {
  if (writer == nullptr) return VOXPLAY_BAD_ARGUMENT;
  if (writer->bBusy) return RefuseWhileBusy(writer);
  writer->pfnProgress = progress;
  writer->pProgressUser = user;
  return VOXPLAY_OK;
}

voxplay_status voxplay_writer_set_notes(voxplay_writer* writer, const voxplay_notes* notes) {
  return WithOpen(writer, [&](api::C_Writer& open) {
    open.SetNotes(notes == nullptr ? api::S_Notes{} : api::NotesOf(*notes));
  });
}

voxplay_status voxplay_writer_write_s16(voxplay_writer* writer, const int16_t* samples,
                                        size_t count) {
  return Write(writer, samples, count);
}

voxplay_status voxplay_writer_write_s32(voxplay_writer* writer, const int32_t* samples,
                                        size_t count) {
  return Write(writer, samples, count);
}

voxplay_status voxplay_writer_write_f32(voxplay_writer* writer, const float* samples,
                                        size_t count) {
  return Write(writer, samples, count);
}

voxplay_status voxplay_writer_finish(voxplay_writer* writer) {
  const voxplay_status eStatus = WithOpen(writer, [&](api::C_Writer& open) {
    open.Finish();
    writer->lost = open.TakeLost();
  });
  if (writer != nullptr && !writer->bBusy) writer->open.reset();
  return eStatus;
}

void voxplay_writer_abandon(voxplay_writer* writer) {
  if (writer != nullptr && !writer->bBusy) writer->open.reset();
}

size_t voxplay_writer_lost_count(const voxplay_writer* writer) {
  return writer == nullptr ? 0 : writer->lost.size();
}

const char* voxplay_writer_lost(const voxplay_writer* writer, size_t index) {
  if (index >= voxplay_writer_lost_count(writer)) return nullptr;
  return writer->lost[index].c_str();
}
