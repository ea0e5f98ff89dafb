// SPDX-License-Identifier: Apache-2.0
//
// The bytes of a sound whose frames all have the same size, wherever they come from: where the next
// frame is, how many there are, and which of them the source does not really have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "stream/DamageCount.h"
#include "stream/StreamInput.h"

namespace api {

struct S_FrameRange {
  std::uint64_t qwAt = 0;
  // In bytes. Empty for a sound that ends where the source ends, while that is not known.
  std::optional<std::uint64_t> qwSize;
  // How many of these bytes the source has.
  std::uint64_t qwHeld = 0;
  // The bytes that it does not have are zeros, and the frames that they are in count as damaged.
  // Otherwise the sound ends before them. It also does when more than 64 MiB turn out to be missing
  // while it is read.
  bool bZeros = false;
};

class C_FrameBytes {
 public:
  // The source is borrowed. A frame has at least one byte. Bytes after the last whole frame are
  // no part of the sound.
  C_FrameBytes(I_ByteSource& source, const S_FrameRange& range, std::size_t cbFrame);

  [[nodiscard]] std::optional<std::uint64_t> FrameCount() const noexcept { return m_qwFrames; }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept { return m_damage.Frames(); }
  [[nodiscard]] std::uint64_t Position() const noexcept { return m_qwPosition; }

  // Begins to read frames: returns how many of nFrames may be there. Throws what stopped the frames
  // before.
  std::size_t Begin(std::size_t nFrames);
  // Fills bytes with those that stand cbOffset bytes after Position(), and returns how many there
  // are. Less means that the sound ends there, or that its source cannot be read there.
  std::size_t Fill(std::uint64_t cbOffset, std::span<std::uint8_t> bytes);
  // The same bytes, as many as room has space for: in the memory of the source, or else in room.
  std::span<const std::uint8_t> Bytes(std::uint64_t cbOffset, std::span<std::uint8_t> room);
  // Moves Position() over the frames that were read. Returns their number, and throws when there
  // are none because of a failure.
  std::size_t End(std::size_t nFrames);

  // As I_SampleStream says.
  void Seek(std::uint64_t qwFrame);

 private:
  // The source has no more than this many bytes of the sound.
  void NoteEnd(std::uint64_t qwBytes);
  void CountDamage(std::uint64_t qwEnd);
  // Whether there are qwFrame frames, for a sound that does not tell. Reads on to there; where the
  // sound ends before, the position is its end.
  [[nodiscard]] bool Reaches(std::uint64_t qwFrame);
  std::uint64_t SkipTo(std::uint64_t qwTo);

  C_StreamInput m_input;
  std::uint64_t m_qwAt;
  std::uint64_t m_qwHeld;
  std::size_t m_cbFrame;
  bool m_bZeros;
  std::optional<std::uint64_t> m_qwFrames;
  std::uint64_t m_qwPosition = 0;
  C_DamageCount m_damage;
};

}  // namespace api
