// SPDX-License-Identifier: Apache-2.0
//
// The bytes of a Kestrel stream's frames, read in blocks of frames; one by one from a source that
// cannot go back, so that nobody waits for frames that are still to come.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kestrel/Configuration.h"
#include "source/ByteSource.h"

namespace api {

class C_KestrelFrames {
 public:
  // Frames of cbFrame bytes, the first one at the start of range. The source must outlive the
  // object.
  C_KestrelFrames(I_ByteSource& source, S_ByteRange range, std::size_t cbFrame);

  // The bytes of a frame: fewer than a frame where the range or the source ends, none after that.
  // Valid until the next call. Throws C_Failure.
  std::span<const std::uint8_t> Frame(std::uint64_t qwFrame);
  [[nodiscard]] std::size_t FrameBytes() const noexcept { return m_cbFrame; }
  [[nodiscard]] bool CanGoBack() const noexcept { return m_source.CanGoBack(); }

 private:
  std::span<const std::uint8_t> InMemory(std::uint64_t qwAt, std::size_t cbWanted) const;
  [[nodiscard]] bool IsLoaded(std::uint64_t qwAt, std::size_t cbWanted) const noexcept;
  void Load(std::uint64_t qwAt, std::size_t cbFrameHere);
  void LoadBytes(std::uint64_t qwAt, std::size_t cbWanted);

  static constexpr std::size_t kFrames = 64;

  I_ByteSource& m_source;
  S_ByteRange m_range;
  std::size_t m_cbFrame;
  bool m_bInMemory;
  std::array<std::uint8_t, kFrames * 2 * kestrel::kMaxWordsPerFrame> m_window;
  std::uint64_t m_qwWindow = 0;  // counted from the start of the range
  std::size_t m_cbAsked = 0;
  std::size_t m_cbHeld = 0;  // fewer where the source ends
};

}  // namespace api
