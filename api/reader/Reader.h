// SPDX-License-Identifier: Apache-2.0
//
// An open sound of any format: what it is, what is noted in it, and its samples.
//
// What the class library's factory opens (WavFileFormat.h, with bKeepEncoded), this opens with the
// same samples. What it refuses is refused, except for
//
//   WAV    float and extensible formats; RF64; sizes that were not known when they were written;
//          files of 4 GiB and more
//   head   streams after a codec head
//   bare   Kestrel streams without any header: those that the player plays
//
// The factory also opens PCM of widths above 32 bits, and VEF files with such PCM, as bytes without
// a meaning. That is refused. Samples of 12 or 20 bits are taken as the high bits of their bytes,
// as other programs take them, while the class library takes them as they are. Events are kept even
// when the sample rate is 0; the class library, which counts them in time, drops them then.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "reader/Opened.h"

namespace api {

class C_Reader {
 public:
  // dwFlags are VOXPLAY_READ_..., and no others. Throws C_Failure; VOXPLAY_UNKNOWN says which tests
  // failed.
  static std::unique_ptr<C_Reader> Open(C_ByteSourcePtr source, std::uint32_t dwFlags);

  [[nodiscard]] voxplay_info Info() const;
  [[nodiscard]] const voxplay_headers& Headers() const noexcept { return m_opened.headers; }
  [[nodiscard]] const std::vector<S_FoundChunk>& Chunks() const noexcept { return m_opened.chunks; }
  [[nodiscard]] const S_Notes& Notes() const noexcept { return m_opened.notes; }
  // Leaves none.
  [[nodiscard]] S_Notes TakeNotes() noexcept { return std::move(m_opened.notes); }
  [[nodiscard]] I_SampleStream& Samples() noexcept { return *m_opened.stream; }
  [[nodiscard]] const I_SampleStream& Samples() const noexcept { return *m_opened.stream; }

 private:
  C_Reader(C_ByteSourcePtr source, std::uint32_t dwFlags);

  C_ByteSourcePtr m_source;
  S_Opened m_opened;  // reads from m_source
};

}  // namespace api
