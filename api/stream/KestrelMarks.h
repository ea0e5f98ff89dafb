// SPDX-License-Identifier: Apache-2.0
//
// Decoders as they were before some of a stream's frames, at equal distances. The noise of a frame
// depends on all frames before it, so that decoding can only begin where a decoder was kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kestrel/Decoder.h"

namespace api {

struct S_KestrelMark {
  std::uint64_t qwFrame = 0;  // the next one to decode
  kestrel::C_Decoder decoder;
};

class C_KestrelMarks {
 public:
  // Whether the decoder before this frame is to be kept.
  [[nodiscard]] bool Wants(std::uint64_t qwFrame) const noexcept;
  // Keeps the mark if it is wanted. The first one is that of frame 0.
  void Offer(const S_KestrelMark& mark);
  // The last mark at or before the frame.
  [[nodiscard]] const S_KestrelMark& Before(std::uint64_t qwFrame) const;

 private:
  void Thin();

  static constexpr std::size_t kMost = 256;  // a kilobyte each

  std::uint64_t m_qwDistance = 64;
  std::vector<S_KestrelMark> m_marks;  // mark n is at frame n * m_qwDistance
};

}  // namespace api
