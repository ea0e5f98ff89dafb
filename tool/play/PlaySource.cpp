// SPDX-License-Identifier: Apache-2.0
#include "play/PlaySource.h"

#include <algorithm>

#include "base/Failure.h"

namespace tool {
namespace {

// What audio services take as it is.
constexpr std::uint32_t kLowestRate = 4000;
constexpr std::uint32_t kHighestRate = 192000;
constexpr std::uint32_t kUsualRate = 48000;
// Beyond these, the filters of a converter would be absurdly long.
constexpr std::uint32_t kLowestChanged = 100;
constexpr std::uint32_t kHighestChanged = 1000000;
constexpr std::size_t kPieceFrames = 8192;

}  // namespace

C_PlaySource::C_PlaySource(I_SoundInput& sound, const std::string& strName, const S_PlaySpan& span)
    : m_sound(sound),
      m_span(span),
      m_mix(sound.Info().dwChannels),
      m_dwRate(sound.Info().dwRate),
      m_channels(kPieceFrames * sound.Info().dwChannels) {
  if (m_dwRate < kLowestChanged || m_dwRate > kHighestChanged) {
    throw C_Failure(strName, "cannot be played", "its rate is " + std::to_string(m_dwRate) + " Hz");
  }
  if (m_dwRate < kLowestRate || m_dwRate > kHighestRate) {
    m_change.emplace(m_dwRate, kUsualRate, Channels());
    m_unchanged.resize(kPieceFrames * Channels());
    m_dwRate = kUsualRate;
  }
  if (span.qwBegin > 0) Seek(span.qwBegin);
}

std::size_t C_PlaySource::Read(std::span<float> samples) {
  return m_change ? ReadConverted(samples) : ReadMixed(samples);
}

std::size_t C_PlaySource::ReadMixed(std::span<float> samples) {
  const std::uint64_t qwLeft = m_span.qwEnd - std::min(m_qwFrame, m_span.qwEnd);
  const std::size_t nRoom = std::min(samples.size() / Channels(), kPieceFrames);
  const auto nWanted = static_cast<std::size_t>(std::min<std::uint64_t>(nRoom, qwLeft));
  if (nWanted == 0) return 0;
  const std::size_t nChannels = m_sound.Info().dwChannels;
  const std::size_t nRead = m_sound.Read(std::span(m_channels).first(nWanted * nChannels));
  m_mix.Mix(std::span(m_channels).first(nRead * nChannels), samples);
  m_qwFrame += nRead;
  return nRead;
}

std::size_t C_PlaySource::ReadConverted(std::span<float> samples) {
  while (true) {
    if (m_nGiven == m_nHeld) {
      m_nHeld = ReadMixed(m_unchanged);
      m_nGiven = 0;
    }
    const auto held = std::span<const float>(m_unchanged).first(m_nHeld * Channels());
    const auto done = m_change->Convert(held.subspan(m_nGiven * Channels()), samples);
    m_nGiven += done.nTaken;
    if (done.nMade > 0 || m_nHeld == 0) return done.nMade;
  }
}

void C_PlaySource::Seek(std::uint64_t qwFrame) {
  std::uint64_t qwTarget = std::clamp(qwFrame, m_span.qwBegin, m_span.qwEnd);
  if (m_sound.Info().qwFrames != kFramesUnknown) {
    qwTarget = std::min(qwTarget, m_sound.Info().qwFrames);
  }
  m_sound.Seek(qwTarget);
  m_qwFrame = qwTarget;
  if (m_change) m_change->Restart();
  m_nGiven = m_nHeld = 0;
}

}  // namespace tool
