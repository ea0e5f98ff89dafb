// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "output/Playback.h"
#include "play/DecodedAhead.h"
#include "play/PlayClock.h"
#include "play/PlaySource.h"
#include "sound/SoundInput.h"

namespace tool {

// What is played of a sound, and how.
struct S_PlayedPart {
  S_PlaySpan span;
  bool bAgain = false;      // over and over
  bool bAfterText = false;  // the cursor stands after text when playback begins
};

// Plays a sound in real time. Operations are for one thread.
class C_SoundPlayer final : private toolbox::I_RenderSource {
 public:
  // The sound outlives the object, and belongs to it until the object ends. Throws C_Failure when
  // it cannot be played.
  C_SoundPlayer(I_SoundInput& sound, const std::string& strName, const S_PlayedPart& part,
                const toolbox::OpenDeviceFunction& fnOpen);
  ~C_SoundPlayer();
  C_SoundPlayer(const C_SoundPlayer&) = delete;
  C_SoundPlayer& operator=(const C_SoundPlayer&) = delete;

  void TogglePause();
  [[nodiscard]] bool Paused() const;
  // Forwards, or backwards below 0; as far as the part reaches.
  void Skip(double dSeconds);
  // The frame that is heard now.
  [[nodiscard]] std::uint64_t Frame() const;
  // The end of what was given to the device.
  [[nodiscard]] std::uint64_t LastFrame() const;
  // Whether the device has got everything.
  [[nodiscard]] bool AllGiven() const { return m_ahead.Drained(); }
  // Returns when the device has played everything that it was given, or at once when it was cut.
  void Stop() { m_playback.Stop(); }
  // The device falls silent at once when it is stopped, also while that waits. Any thread may call
  // it.
  void Cut() { m_playback.Cut(); }
  // Why the sound has ended too early. Ends the decoder.
  std::optional<std::string> Failure();

 private:
  // Always true: why a sound has ended too early, Failure() says.
  bool RenderFrames(void* pFrames, UInt32 dwFrames) override;

  const std::uint32_t m_dwSoundRate;
  const std::uint64_t m_qwSoundFrames;
  const S_PlaySpan m_span;
  C_PlaySource m_source;
  C_DecodedAhead m_ahead;
  // What the device gets and what is said about it belong together.
  mutable std::mutex m_lock;
  C_PlayClock m_clock;
  bool m_bPaused = false;
  toolbox::C_Playback m_playback;
};

}  // namespace tool
