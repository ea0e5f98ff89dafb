// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "play/SideMix.h"
#include "sound/RateChange.h"
#include "sound/SoundInput.h"

namespace tool {

// The frames from which to which a sound is played; the end may be kFramesUnknown.
struct S_PlaySpan {
  std::uint64_t qwBegin = 0;
  std::uint64_t qwEnd = kFramesUnknown;
};

// A part of a sound as a device wants it: one or two channels, at a rate that devices play.
class C_PlaySource {
 public:
  // The sound outlives the object. Throws C_Failure when the rate cannot be played.
  C_PlaySource(I_SoundInput& sound, const std::string& strName, const S_PlaySpan& span);

  [[nodiscard]] std::uint32_t Rate() const noexcept { return m_dwRate; }
  [[nodiscard]] std::uint32_t Channels() const noexcept { return m_mix.Sides(); }
  // The frame of the sound that is read next.
  [[nodiscard]] std::uint64_t Frame() const noexcept { return m_qwFrame; }
  // Reads whole frames, and returns their number; 0 only at the end.
  std::size_t Read(std::span<float> samples);
  // Moves to a frame of the sound. One outside the part is taken for the nearest in it.
  void Seek(std::uint64_t qwFrame);

 private:
  std::size_t ReadMixed(std::span<float> samples);
  std::size_t ReadConverted(std::span<float> samples);

  I_SoundInput& m_sound;
  const S_PlaySpan m_span;
  std::uint64_t m_qwFrame = 0;
  C_SideMix m_mix;
  std::uint32_t m_dwRate;
  std::vector<float> m_channels;  // as the sound has them
  std::optional<C_RateChange> m_change;
  std::vector<float> m_unchanged;  // what the converter is given
  std::size_t m_nGiven = 0;        // frames of it that it has taken
  std::size_t m_nHeld = 0;         // frames in it
};

}  // namespace tool
