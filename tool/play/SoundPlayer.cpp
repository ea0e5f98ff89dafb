// SPDX-License-Identifier: Apache-2.0
#include "play/SoundPlayer.h"

#include <algorithm>
#include <cmath>

#include "base/Failure.h"

namespace tool {
namespace {

toolbox::S_OutputFormat FormatOf(const C_PlaySource& source) {
  return {source.Rate(), source.Channels(), true};
}

}  // namespace

C_SoundPlayer::C_SoundPlayer(I_SoundInput& sound, const std::string& strName,
                             const S_PlayedPart& part, const toolbox::OpenDeviceFunction& fnOpen)
    : m_dwSoundRate(sound.Info().dwRate),
      m_qwSoundFrames(sound.Info().qwFrames),
      m_span(part.span),
      m_source(sound, strName, part.span),
      m_ahead(m_source, part.span.qwBegin, part.bAgain),
      m_clock(m_dwSoundRate, part.span.qwBegin),
      m_playback(FormatOf(m_source), *this, fnOpen, part.bAfterText) {
  m_ahead.WaitForFirst();
  if (!m_playback.Start()) throw C_Failure(strName, "cannot be played", "no thread can be made");
}

C_SoundPlayer::~C_SoundPlayer() { m_playback.Stop(); }

void C_SoundPlayer::TogglePause() {
  const std::lock_guard lock(m_lock);
  m_bPaused = !m_bPaused;
}

bool C_SoundPlayer::Paused() const {
  const std::lock_guard lock(m_lock);
  return m_bPaused;
}

void C_SoundPlayer::Skip(double dSeconds) {
  const std::lock_guard lock(m_lock);
  const double dFrame = static_cast<double>(m_clock.Frame(std::chrono::steady_clock::now())) +
                        dSeconds * m_dwSoundRate;
  const auto qwFrame = static_cast<std::uint64_t>(std::llround(std::max(dFrame, 0.0)));
  // The greatest number, which stands for an unknown length, limits nothing.
  const std::uint64_t qwEnd = std::min(m_span.qwEnd, m_qwSoundFrames);
  const std::uint64_t qwTarget = std::clamp(qwFrame, m_span.qwBegin, qwEnd);
  m_ahead.Seek(qwTarget);
  m_clock.Jump(qwTarget);
}

std::uint64_t C_SoundPlayer::Frame() const {
  const std::lock_guard lock(m_lock);
  return m_clock.Frame(std::chrono::steady_clock::now());
}

std::optional<std::string> C_SoundPlayer::Failure() {
  m_ahead.Join();
  return m_ahead.Failure();
}

std::uint64_t C_SoundPlayer::LastFrame() const {
  const std::lock_guard lock(m_lock);
  return m_clock.LastFrame();
}

// The memory is silent on entry, and what the decoder does not have in time stays so.
bool C_SoundPlayer::RenderFrames(void* pFrames, UInt32 dwFrames) {
  const std::span samples(static_cast<float*>(pFrames),
                          std::size_t{dwFrames} * m_source.Channels());
  const std::lock_guard lock(m_lock);
  if (m_bPaused) return true;
  const auto taken = m_ahead.Take(samples);
  if (taken.nFrames == 0) return true;
  const std::chrono::duration<double> length(static_cast<double>(taken.nFrames) / m_source.Rate());
  m_clock.Given(length, taken.qwEnd, std::chrono::steady_clock::now());
  return true;
}

}  // namespace tool
