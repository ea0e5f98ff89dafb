// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "notes/RiffNotes.h"
#include "target/ByteTarget.h"
#include "voxplay.h"
#include "writer/PcmSink.h"
#include "writer/RiffFrame.h"
#include "writer/SoundWriter.h"

namespace api {

// The RIFF files of a format; codec formats have 16-bit samples. bRoomForRf64 also when the flags
// of the format do not ask for it.
S_RiffForm RiffFormOf(const voxplay_format& format, bool bRoomForRf64);

// Writes WAV and VEMD files, and VEF files without a stream: the samples, then the marks, then the
// other chunks.
class C_RiffWriter final : public I_SoundWriter {
 public:
  // target must outlive the object. qwMost: see C_RiffFrame. A sound that is announced to need RF64
  // becomes an RF64 file if the form has one.
  C_RiffWriter(I_ByteTarget& target, const voxplay_format& format,
               std::uint64_t qwMost = C_RiffFrame::kMostBytes);

  void Begin(const S_Notes& notes, std::uint64_t qwAnnounced) override;
  void MakeRoom(std::uint64_t qwFrames) override { m_frame.CheckRoom(qwFrames); }
  I_FrameSink& Frames() override { return m_pcm; }
  std::vector<std::string> End(const S_Notes& notes, std::uint64_t qwFrames) override;

 private:
  E_RiffForm m_eForm;
  bool m_bCanGoBack;
  C_RiffFrame m_frame;
  C_PcmSink m_pcm;
};

// The bytes of chunks with their headers and pad bytes.
std::uint64_t BytesOf(std::span<const S_NoteChunk> chunks) noexcept;
void WriteChunks(C_RiffFrame& frame, std::span<const S_NoteChunk> chunks);

}  // namespace api
