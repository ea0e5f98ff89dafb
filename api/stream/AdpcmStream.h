// SPDX-License-Identifier: Apache-2.0
//
// MS and DVI ADPCM as a stream. Several blocks are decoded together, because the decoders have fast
// ways for that; they are kept until another block is wanted.
//
// What is left after the whole blocks counts by rules of its own, and may even end the sound before
// the last frames of the whole blocks. While a source does not tell where it ends, a few blocks are
// therefore read ahead.
#pragma once

#include <vector>

#include "stream/EncodedWav.h"
#include "stream/SampleStream.h"
#include "stream/StreamInput.h"

namespace api {

class C_AdpcmStream final : public C_SampleStream16 {
 public:
  // The source is borrowed. Throws C_Failure for blocks that are too large to be decoded.
  C_AdpcmStream(I_ByteSource& source, S_EncodedWav wav);

  [[nodiscard]] std::size_t ChannelCount() const noexcept override { return m_nChannels; }
  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept override {
    return m_qwFrames;
  }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return 0; }
  [[nodiscard]] std::uint64_t Position() const noexcept override { return m_qwPosition; }

  using C_SampleStream16::Read;
  std::size_t Read(std::span<std::int16_t> samples) override;
  void Seek(std::uint64_t qwFrame) override;

 private:
  // Blocks that are decoded.
  struct S_Window {
    std::uint64_t qwFirst = 0;  // frame
    std::uint64_t qwFrames = 0;
    std::vector<std::int16_t> samples;  // of the first of these frames; the others are silence
  };

  // Of so many encoded bytes.
  [[nodiscard]] std::uint64_t FramesOf(std::uint64_t qwBytes) const;
  // The source has no more than this many encoded bytes.
  void NoteEnd(std::uint64_t qwBytes);
  [[nodiscard]] std::uint64_t MostBytes() const noexcept;
  [[nodiscard]] bool IsAtEnd() const noexcept;
  // Whether there are qwFrame frames. Where a sound that does not tell ends before, the position is
  // its end.
  [[nodiscard]] bool Reaches(std::uint64_t qwFrame);

  // The encoded bytes from qwOffset on, at most MostBytes(), as many as there is room for. Less
  // means that they end there, or that they cannot be read there.
  std::span<const std::uint8_t> Encoded(std::uint64_t qwOffset);
  // Forgets what is held of the encoded bytes before qwOffset.
  void ForgetEncoded(std::uint64_t qwOffset);
  // Reads on until the encoded bytes up to qwTo, or their end, have come.
  void GoTo(std::uint64_t qwTo);

  [[nodiscard]] std::uint64_t BlockOf(std::uint64_t qwFrame) const noexcept;
  [[nodiscard]] bool IsInWindow(std::uint64_t qwFrame) const noexcept;
  // Decodes blocks from the one with this frame on. False when the frame is not among them.
  bool MoveWindow(std::uint64_t qwFrame);
  void DecodeBlocks(std::uint64_t qwBlock, std::span<const std::uint8_t> bytes);
  void DecodeRest(std::span<const std::uint8_t> bytes);
  void Decode(std::span<const std::uint8_t> bytes, std::size_t nFrames);
  // Whether the first blocks of the sound hold enough for their samples (CompressedWav.h).
  [[nodiscard]] bool AreAccountedFor(std::uint64_t qwBlocks) const;
  // Copies frames of the window, from the position on. Returns their number.
  std::size_t Copy(std::span<std::int16_t> samples);

  S_EncodedWav m_wav;
  C_StreamInput m_input;
  std::size_t m_nChannels;
  std::size_t m_cbBlock;
  std::size_t m_nBlockFrames;  // as the format says
  std::size_t m_nMostFrames;   // that a block can hold
  std::size_t m_nTogether;     // blocks that are decoded together
  std::size_t m_nNear;         // blocks that what is left after them may shorten
  bool m_bEndKnown;
  bool m_bWholeBlocks = false;  // the decoder gives all samples of a whole block
  std::optional<std::uint64_t> m_qwFrames;
  std::uint64_t m_qwPosition = 0;
  std::vector<std::uint8_t> m_encoded;
  std::uint64_t m_qwEncodedAt = 0;  // offset of what m_encoded holds
  std::size_t m_cbEncoded = 0;      // how much it holds
  S_Window m_window;
};

}  // namespace api
