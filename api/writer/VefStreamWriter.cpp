// SPDX-License-Identifier: Apache-2.0
#include "writer/VefStreamWriter.h"

#include <utility>

#include "ByteReader.h"
#include "notes/RiffNotes.h"
#include "writer/FileType.h"
#include "writer/RiffWriter.h"

namespace api {
namespace {

constexpr std::uint16_t kCodecFormatVersion = 256;
constexpr S_FourCC kCodecFormat{'v', 'a', 'f', 'm'};
constexpr S_FourCC kStream{'v', 'd', 'a', 't'};

}  // namespace

C_VefStreamWriter::C_VefStreamWriter(
    I_ByteTarget& target, const voxplay_format& format,
    const std::function<C_StreamCoderPtr(I_ByteTarget&)>& fnMakeCoder, std::uint64_t qwMost)
    : m_target(target),
      m_format(format),
      m_frame(target, RiffFormOf(format, false), qwMost),
      m_pcm(target, E_StoredForm::Int16),
      m_coder(fnMakeCoder(m_stream)),
      m_coded(*m_coder, format.channels),
      m_both(m_pcm, m_coded) {}

void C_VefStreamWriter::Begin(const S_Notes& /*notes*/, std::uint64_t qwAnnounced) {
  m_frame.Begin(qwAnnounced, 0);
  m_coder->Begin(qwAnnounced);
}

void C_VefStreamWriter::MakeRoom(std::uint64_t qwFrames) {
  m_coder->CheckLength(qwFrames);
  m_frame.CheckRoom(qwFrames);
}

std::vector<std::string> C_VefStreamWriter::End(const S_Notes& notes, std::uint64_t qwFrames) {
  m_coder->End(notes);
  S_RiffNotes chunks = WriteRiffNotes(notes, E_RiffForm::Vef, qwFrames);
  const std::vector<std::uint8_t> codecFormat = CodecFormat();
  const std::uint64_t qwStream = m_stream.Length();
  m_frame.CheckRoom(qwFrames, BytesOf(chunks.marks) + C_RiffFrame::ChunkBytes(codecFormat.size()) +
                                  C_RiffFrame::ChunkBytes(qwStream) + BytesOf(chunks.others));
  m_frame.EndSamples(qwFrames);
  WriteChunks(m_frame, chunks.marks);
  m_frame.WriteChunk(kCodecFormat, codecFormat);
  m_frame.BeginChunk(kStream, qwStream);
  m_stream.CopyTo(m_target);
  m_frame.EndChunk(qwStream);
  WriteChunks(m_frame, chunks.others);
  m_frame.End(qwFrames);
  return std::move(chunks.lost);
}

std::vector<std::uint8_t> C_VefStreamWriter::CodecFormat() const {
  vcm::C_ByteWriter record;
  record.U16(kCodecFormatVersion);
  record.U16(FileTypeOf(m_format));
  record.U16(static_cast<std::uint16_t>(m_format.sample_rate));
  record.U32(BitRateOf(m_format));
  record.U8(static_cast<std::uint8_t>(m_format.channels));
  record.U8(0);  // no platform in particular
  record.U32(0);
  return record.Take();
}

}  // namespace api
