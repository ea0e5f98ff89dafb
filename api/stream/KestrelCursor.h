// SPDX-License-Identifier: Apache-2.0
//
// Decodes the frames of a Kestrel stream one after another, from any of them on. The samples are
// always those of decoding all of them.
#pragma once

#include <cstdint>
#include <span>

#include "stream/KestrelFrames.h"
#include "stream/KestrelMarks.h"

namespace api {

enum class E_KestrelFrame { kGood, kDamaged, kNone };

class C_KestrelCursor {
 public:
  using S_Samples = std::span<std::int16_t, kestrel::kSamplesPerFrame>;

  // configuration must be that of a rate that needs no rounding.
  C_KestrelCursor(const C_KestrelFrames& frames, const kestrel::S_Configuration& configuration);

  // The frame that comes next.
  [[nodiscard]] std::uint64_t Frame() const noexcept { return m_at.qwFrame; }
  [[nodiscard]] bool CanGoBack() const noexcept { return m_frames.CanGoBack(); }
  // Decodes the next frame. One that the end cuts short is completed with zeros and counts as
  // damaged. kNone after the end: then nothing has changed. Throws C_Failure and has not moved
  // then.
  E_KestrelFrame Next(S_Samples samples);
  // Moves to a frame, or to the end if that comes before. Throws C_Failure and has not moved then.
  void MoveTo(std::uint64_t qwFrame);

 private:
  bool TakeWords(std::uint64_t qwFrame);
  bool Pass(S_KestrelMark& at, bool bRenewOverlap);

  C_KestrelFrames m_frames;
  C_KestrelMarks m_marks;
  S_KestrelMark m_at;
  std::uint16_t m_words[kestrel::kMaxWordsPerFrame] = {};
  bool m_bCut = false;  // the frame of these words
};

}  // namespace api
