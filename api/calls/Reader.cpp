// SPDX-License-Identifier: Apache-2.0
//
// The reader of voxplay.h.
#include "reader/Reader.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "calls/Guard.h"
#include "calls/NotesObject.h"
#include "calls/SizedRecord.h"
#include "source/ByteSource.h"

struct voxplay_reader {
  // What is open, and its notes; null when nothing is.
  std::unique_ptr<api::C_Reader> open;
  voxplay_notes notes;
  // The beginning of its sentences, and the last sentence.
  std::string strName;
  mutable std::string strMessage;
};

namespace {

// Refuses an argument. What is open stays open.
voxplay_status Refuse(const voxplay_reader* pReader, const char* pszWhy) {
  if (pReader == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return api::Guarded(&pReader->strMessage, pReader->strName,
                      [&] { throw api::C_Failure(VOXPLAY_BAD_ARGUMENT, pszWhy); });
}

// Opens what a function gives as a source.
template <typename MakeSource>
voxplay_status Open(voxplay_reader* pReader, const char* pszName, std::uint32_t dwFlags,
                    MakeSource&& fnSource) {
  if ((dwFlags & ~std::uint32_t{VOXPLAY_READ_STREAM | VOXPLAY_READ_NO_BARE}) != 0) {
    return Refuse(pReader, "flags: one of them is unknown");
  }
  // The name may be a text in the notes that go when the reader is closed.
  std::string strName;
  const voxplay_status eNamed = api::Guarded(&pReader->strMessage, "", [&] { strName = pszName; });
  if (eNamed != VOXPLAY_OK) return eNamed;
  voxplay_reader_close(pReader);
  pReader->strName.swap(strName);
  return api::Guarded(&pReader->strMessage, pReader->strName, [&] {
    auto reader = api::C_Reader::Open(fnSource(), dwFlags);
    pReader->notes.notes = reader->TakeNotes();
    pReader->open = std::move(reader);
  });
}

// Does something with what is open.
template <typename Work>
voxplay_status WithOpen(const voxplay_reader* pReader, Work&& work) {
  return api::Guarded(&pReader->strMessage, pReader->strName, [&] {
    if (!pReader->open) throw api::C_Failure(VOXPLAY_WRONG_STATE, "reader: nothing is open");
    work(*pReader->open);
  });
}

// Gives the caller a record of what is open, as far as the caller knows it. The record may be null.
template <typename Record, typename First, typename Ask>
voxplay_status GiveRecord(const voxplay_reader* pReader, First Record::*pFirst, Record* pTarget,
                          std::size_t cbTarget, Ask&& fnAsk) {
  if (pReader == nullptr || !api::CopyOut(Record{}, pFirst, pTarget, cbTarget)) {
    return Refuse(pReader, "record: null, or too small for its first member");
  }
  return WithOpen(pReader, [&](const api::C_Reader& reader) {
    api::CopyOut(fnAsk(reader), pFirst, pTarget, cbTarget);
  });
}

voxplay_chunk_place PlaceOf(const std::vector<api::S_FoundChunk>& chunks, std::size_t nIndex) {
  if (nIndex >= chunks.size()) {
    throw api::C_Failure(
        VOXPLAY_BAD_ARGUMENT,
        "chunk " + std::to_string(nIndex) + ": the file has " + std::to_string(chunks.size()));
  }
  const api::S_FoundChunk& chunk = chunks[nIndex];
  voxplay_chunk_place place{};
  std::ranges::copy(chunk.id, place.id);
  place.offset = chunk.payload.qwAt;
  place.size = chunk.payload.qwSize;
  place.held = chunk.qwHeld;
  return place;
}

template <typename Sample>
voxplay_status Read(voxplay_reader* pReader, Sample* pSamples, std::size_t nCount,
                    std::size_t* pnDone) {
  if (pnDone != nullptr) *pnDone = 0;
  if (pReader == nullptr || pnDone == nullptr) return Refuse(pReader, "done: a null pointer");
  if (pSamples == nullptr && nCount != 0) return Refuse(pReader, "samples: a null pointer");
  return WithOpen(pReader, [&](api::C_Reader& reader) {
    api::I_SampleStream& stream = reader.Samples();
    if (nCount > SIZE_MAX / sizeof(Sample) / stream.ChannelCount()) {
      throw api::C_Failure(VOXPLAY_BAD_ARGUMENT, "samples: no buffer can hold so many");
    }
    // A stream may give fewer frames than there are.
    while (*pnDone < nCount) {
      const std::size_t nAt = *pnDone * stream.ChannelCount();
      const std::size_t nRoom = (nCount - *pnDone) * stream.ChannelCount();
      const std::size_t nRead = stream.Read(std::span(pSamples + nAt, nRoom));
      if (nRead == 0) break;
      *pnDone += nRead;
    }
  });
}

}  // namespace

voxplay_reader* voxplay_reader_new(void) { return new (std::nothrow) voxplay_reader; }

void voxplay_reader_free(voxplay_reader* reader) { delete reader; }

voxplay_status voxplay_reader_open_file(voxplay_reader* reader, const char* path, uint32_t flags) {
  if (reader == nullptr || path == nullptr) return Refuse(reader, "path: a null pointer");
  return Open(reader, path, flags, [&] { return api::OpenFileSource(reader->strName.c_str()); });
}

voxplay_status voxplay_reader_open_memory(voxplay_reader* reader, const void* bytes, size_t size,
                                          uint32_t flags) {
  if (reader == nullptr || (bytes == nullptr && size != 0)) {
    return Refuse(reader, "bytes: a null pointer");
  }
  return Open(reader, "memory", flags, [&] {
    return api::OpenMemorySource({static_cast<const std::uint8_t*>(bytes), size});
  });
}

voxplay_status voxplay_reader_open_input(voxplay_reader* reader, const voxplay_input* input,
                                         uint32_t flags) {
  if (reader == nullptr || input == nullptr || input->read == nullptr) {
    return Refuse(reader, "input: a null pointer, or no function to read with");
  }
  return Open(reader, "input", flags, [&] { return api::OpenInputSource(*input); });
}

void voxplay_reader_close(voxplay_reader* reader) {
  if (reader == nullptr) return;
  reader->open.reset();
  reader->notes = {};
  reader->strName.clear();
  reader->strMessage.clear();
}

const char* voxplay_reader_message(const voxplay_reader* reader) {
  return reader == nullptr ? "" : reader->strMessage.c_str();
}

voxplay_status voxplay_reader_info(const voxplay_reader* reader, voxplay_info* info, size_t size) {
  return GiveRecord(reader, &voxplay_info::container, info, size,
                    [](const api::C_Reader& open) { return open.Info(); });
}

voxplay_status voxplay_reader_headers(const voxplay_reader* reader, voxplay_headers* headers,
                                      size_t size) {
  return GiveRecord(reader, &voxplay_headers::has_sp, headers, size,
                    [](const api::C_Reader& open) { return open.Headers(); });
}

size_t voxplay_reader_chunk_count(const voxplay_reader* reader) {
  return reader == nullptr || !reader->open ? 0 : reader->open->Chunks().size();
}

voxplay_status voxplay_reader_chunk(const voxplay_reader* reader, size_t index,
                                    voxplay_chunk_place* place, size_t size) {
  return GiveRecord(reader, &voxplay_chunk_place::id, place, size,
                    [index](const api::C_Reader& open) { return PlaceOf(open.Chunks(), index); });
}

voxplay_status voxplay_reader_read_s16(voxplay_reader* reader, int16_t* samples, size_t count,
                                       size_t* done) {
  return Read(reader, samples, count, done);
}

voxplay_status voxplay_reader_read_s32(voxplay_reader* reader, int32_t* samples, size_t count,
                                       size_t* done) {
  return Read(reader, samples, count, done);
}

voxplay_status voxplay_reader_read_f32(voxplay_reader* reader, float* samples, size_t count,
                                       size_t* done) {
  return Read(reader, samples, count, done);
}

voxplay_status voxplay_reader_seek(voxplay_reader* reader, uint64_t frame) {
  if (reader == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return WithOpen(reader, [&](api::C_Reader& open) {
    const auto count = open.Samples().FrameCount();
    if (count && frame > *count) {
      throw api::C_Failure(VOXPLAY_BAD_ARGUMENT, "frame " + std::to_string(frame) +
                                                     ": the sound has " + std::to_string(*count));
    }
    open.Samples().Seek(frame);
  });
}

uint64_t voxplay_reader_tell(const voxplay_reader* reader) {
  return reader == nullptr || !reader->open ? 0 : reader->open->Samples().Position();
}

const voxplay_notes* voxplay_reader_notes(const voxplay_reader* reader) {
  return reader == nullptr || !reader->open ? nullptr : &reader->notes;
}
