// SPDX-License-Identifier: Apache-2.0
//
// A-law and mu-law as a stream: one byte per sample.
#pragma once

#include "stream/EncodedWav.h"
#include "stream/FrameBytes.h"
#include "stream/SampleStream.h"

namespace api {

class C_G711Stream final : public C_SampleStream16 {
 public:
  // The source is borrowed.
  C_G711Stream(I_ByteSource& source, S_EncodedWav wav);

  [[nodiscard]] std::size_t ChannelCount() const noexcept override { return m_nChannels; }
  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept override {
    return m_bytes.FrameCount();
  }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return 0; }
  [[nodiscard]] std::uint64_t Position() const noexcept override { return m_bytes.Position(); }

  using C_SampleStream16::Read;
  std::size_t Read(std::span<std::int16_t> samples) override;
  void Seek(std::uint64_t qwFrame) override { m_bytes.Seek(qwFrame); }

 private:
  S_EncodedWav m_wav;
  std::size_t m_nChannels;
  C_FrameBytes m_bytes;
};

}  // namespace api
