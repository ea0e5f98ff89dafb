// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "target/ByteTarget.h"
#include "voxplay.h"
#include "writer/CodedSink.h"
#include "writer/SoundWriter.h"
#include "writer/StreamCoder.h"

namespace api {

// Writes a stream after an SP header, after a codec head, or by itself.
class C_StreamWriter final : public I_SoundWriter {
 public:
  // target must outlive the object; coder writes to it.
  C_StreamWriter(I_ByteTarget& target, const voxplay_format& format, C_StreamCoderPtr coder);

  void Begin(const S_Notes& notes, std::uint64_t qwAnnounced) override;
  void MakeRoom(std::uint64_t qwFrames) override { m_coder->CheckLength(qwFrames); }
  I_FrameSink& Frames() override { return m_coded; }
  std::vector<std::string> End(const S_Notes& notes, std::uint64_t qwFrames) override;

 private:
  I_ByteTarget& m_target;
  voxplay_format m_format;
  C_StreamCoderPtr m_coder;
  C_CodedSink m_coded;
};

}  // namespace api
