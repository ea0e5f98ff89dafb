// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "target/SpooledTarget.h"
#include "voxplay.h"
#include "writer/CodedSink.h"
#include "writer/PcmSink.h"
#include "writer/RiffFrame.h"
#include "writer/SoundWriter.h"
#include "writer/StreamCoder.h"

namespace api {

// Writes VEF files with a stream. In the order of the class library: the samples as PCM of 16 bits,
// the marks, "vafm", the stream in "vdat", the other chunks. The stream waits in a temporary file.
class C_VefStreamWriter final : public I_SoundWriter {
 public:
  // target must outlive the object, and can go back. fnMakeCoder makes the coder of the stream for
  // the target that it gets.
  C_VefStreamWriter(I_ByteTarget& target, const voxplay_format& format,
                    const std::function<C_StreamCoderPtr(I_ByteTarget&)>& fnMakeCoder,
                    std::uint64_t qwMost = C_RiffFrame::kMostBytes);

  void Begin(const S_Notes& notes, std::uint64_t qwAnnounced) override;
  void MakeRoom(std::uint64_t qwFrames) override;
  I_FrameSink& Frames() override { return m_both; }
  std::vector<std::string> End(const S_Notes& notes, std::uint64_t qwFrames) override;

 private:
  // Sends frames to the samples and to the stream.
  class C_Both final : public I_FrameSink {
   public:
    C_Both(I_FrameSink& one, I_FrameSink& other) : m_one(one), m_other(other) {}
    void Put(std::span<const std::int16_t> samples) override { PutAny(samples); }
    void Put(std::span<const std::int32_t> samples) override { PutAny(samples); }
    void Put(std::span<const float> samples) override { PutAny(samples); }

   private:
    template <typename Sample>
    void PutAny(std::span<const Sample> samples) {
      m_one.Put(samples);
      m_other.Put(samples);
    }
    I_FrameSink& m_one;
    I_FrameSink& m_other;
  };

  [[nodiscard]] std::vector<std::uint8_t> CodecFormat() const;

  I_ByteTarget& m_target;
  voxplay_format m_format;
  C_RiffFrame m_frame;
  C_PcmSink m_pcm;
  C_SpooledTarget m_stream;
  C_StreamCoderPtr m_coder;
  C_CodedSink m_coded;
  C_Both m_both;
};

}  // namespace api
