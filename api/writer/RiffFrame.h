// SPDX-License-Identifier: Apache-2.0
//
// What stands around the samples in a RIFF file: everything up to them, and the chunks after them.
//
//   "RIFF"  size of what follows, form
//   "JUNK"  28 bytes of zeros, where room for "ds64" was asked for
//   "fmt "
//   "fact"  of floating point: the number of frames
//   "data"  size, samples
//   others
//
// Sizes are without pad bytes; a pad byte of 0 follows each payload of an odd size. A file that
// does not fit in 32-bit sizes becomes an RF64 file: its first four bytes change, "JUNK" becomes
// "ds64" with the sizes and the number of frames in 64 bits, and those in 32 bits become 2^32 - 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "notes/Notes.h"
#include "target/ByteTarget.h"

namespace api {

struct S_RiffForm {
  S_FourCC form{};
  bool bFloat = false;  // floating point; otherwise integers
  std::uint16_t wChannels = 0;
  std::uint32_t dwSampleRate = 0;
  std::uint16_t wBits = 0;  // of a sample; whole bytes
  bool bRoomForRf64 = false;

  [[nodiscard]] std::uint32_t FrameBytes() const noexcept { return wChannels * (wBits / 8U); }
};

class C_RiffFrame {
 public:
  // The most that sizes of 32 bits can say.
  static constexpr std::uint64_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

  // target must outlive the object. qwMost is kMostBytes, or less to try what happens beyond it.
  C_RiffFrame(I_ByteTarget& target, const S_RiffForm& form, std::uint64_t qwMost = kMostBytes);

  // Whether so many frames, and so many bytes after them, fit without RF64.
  [[nodiscard]] bool Fits(std::uint64_t qwFrames, std::uint64_t qwAfter = 0) const noexcept;
  // Throws C_Failure (VOXPLAY_TOO_LARGE) when they do not fit at all.
  void CheckRoom(std::uint64_t qwFrames, std::uint64_t qwAfter = 0) const;

  // Writes everything up to the samples, for so many frames and bytes after them.
  void Begin(std::uint64_t qwFrames, std::uint64_t qwAfter);
  // To be called after the samples, before the other chunks.
  void EndSamples(std::uint64_t qwFrames);
  void WriteChunk(const S_FourCC& id, std::span<const std::uint8_t> payload);
  // The header of a chunk whose payload the caller writes, and what comes after that.
  void BeginChunk(const S_FourCC& id, std::uint64_t qwSize);
  void EndChunk(std::uint64_t qwSize);
  // Corrects what Begin has written, if the target can go back. Everything must be written.
  void End(std::uint64_t qwFrames);

  // The bytes of a chunk with its header and its pad byte.
  static std::uint64_t ChunkBytes(std::uint64_t qwSize) noexcept { return 8 + qwSize + qwSize % 2; }

 private:
  [[nodiscard]] std::uint64_t RiffSize(std::uint64_t qwFrames,
                                       std::uint64_t qwAfter) const noexcept;
  [[nodiscard]] std::vector<std::uint8_t> Head(std::uint64_t qwFrames, std::uint64_t qwAfter) const;

  I_ByteTarget& m_target;
  S_RiffForm m_form;
  std::uint64_t m_qwMost;
  std::size_t m_cbHead;
};

}  // namespace api
