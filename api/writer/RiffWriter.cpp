// SPDX-License-Identifier: Apache-2.0
#include "writer/RiffWriter.h"

#include "writer/FileType.h"

namespace api {
namespace {

S_FourCC FormOf(std::uint32_t dwContainer) {
  switch (dwContainer) {
    case VOXPLAY_CONTAINER_VEMD:
      return {'V', 'E', 'M', 'D'};
    case VOXPLAY_CONTAINER_VEF:
      return {'V', 'E', 'F', 'F'};
    default:
      return {'W', 'A', 'V', 'E'};
  }
}

E_StoredForm StoredFormOf(const voxplay_format& format) {
  if (format.codec == VOXPLAY_CODEC_FLOAT) return E_StoredForm::Float32;
  switch (HasStream(format) ? 16 : format.bits_per_sample) {
    case 8:
      return E_StoredForm::Int8;
    case 24:
      return E_StoredForm::Int24;
    case 32:
      return E_StoredForm::Int32;
    default:
      return E_StoredForm::Int16;
  }
}

bool NeedsRf64(I_ByteTarget& target, const voxplay_format& format, std::uint64_t qwMost) {
  if (format.container != VOXPLAY_CONTAINER_WAV) return false;
  if ((format.flags & VOXPLAY_WRITE_RF64) != 0) return true;
  return !C_RiffFrame(target, RiffFormOf(format, false), qwMost).Fits(format.frames);
}

}  // namespace

S_RiffForm RiffFormOf(const voxplay_format& format, bool bRoomForRf64) {
  return {.form = FormOf(format.container),
          .bFloat = format.codec == VOXPLAY_CODEC_FLOAT,
          .wChannels = static_cast<std::uint16_t>(format.channels),
          .dwSampleRate = format.sample_rate,
          .wBits = static_cast<std::uint16_t>(8 * BytesOf(StoredFormOf(format))),
          .bRoomForRf64 = bRoomForRf64};
}

C_RiffWriter::C_RiffWriter(I_ByteTarget& target, const voxplay_format& format, std::uint64_t qwMost)
    : m_eForm(format.container == VOXPLAY_CONTAINER_VEF ? E_RiffForm::Vef : E_RiffForm::Wave),
      m_bCanGoBack(target.CanGoBack()),
      m_frame(target, RiffFormOf(format, NeedsRf64(target, format, qwMost)), qwMost),
      m_pcm(target, StoredFormOf(format)) {}

// Where the target can go back, the notes may still change.
void C_RiffWriter::Begin(const S_Notes& notes, std::uint64_t qwAnnounced) {
  if (m_bCanGoBack) return m_frame.Begin(qwAnnounced, 0);
  const S_RiffNotes chunks = WriteRiffNotes(notes, m_eForm, qwAnnounced);
  m_frame.Begin(qwAnnounced, BytesOf(chunks.marks) + BytesOf(chunks.others));
}

std::vector<std::string> C_RiffWriter::End(const S_Notes& notes, std::uint64_t qwFrames) {
  S_RiffNotes chunks = WriteRiffNotes(notes, m_eForm, qwFrames);
  m_frame.CheckRoom(qwFrames, BytesOf(chunks.marks) + BytesOf(chunks.others));
  m_frame.EndSamples(qwFrames);
  WriteChunks(m_frame, chunks.marks);
  WriteChunks(m_frame, chunks.others);
  m_frame.End(qwFrames);
  return std::move(chunks.lost);
}

std::uint64_t BytesOf(std::span<const S_NoteChunk> chunks) noexcept {
  std::uint64_t qwBytes = 0;
  for (const S_NoteChunk& chunk : chunks) qwBytes += C_RiffFrame::ChunkBytes(chunk.data.size());
  return qwBytes;
}

void WriteChunks(C_RiffFrame& frame, std::span<const S_NoteChunk> chunks) {
  for (const S_NoteChunk& chunk : chunks) frame.WriteChunk(chunk.id, chunk.data);
}

}  // namespace api
