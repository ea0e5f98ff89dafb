// SPDX-License-Identifier: Apache-2.0
#include "sound/Resampler.h"

#include <algorithm>

#include "base/Interrupt.h"
#include "sound/ScaledFrames.h"

namespace tool {
namespace {

constexpr std::size_t kPieceSamples = 16384;

std::size_t PieceFrames(std::uint32_t dwChannels) {
  return std::max<std::size_t>(kPieceSamples / dwChannels, C_RateChange::kGreatestRatio);
}

}  // namespace

C_Resampler::C_Resampler(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels)
    : m_dwFrom(dwFrom),
      m_dwTo(dwTo),
      m_dwChannels(dwChannels),
      m_change(dwFrom, dwTo, dwChannels),
      m_piece(PieceFrames(dwChannels) * dwChannels) {}

void C_Resampler::Put(std::span<const float> samples, const PFN_Take& fnTake) {
  m_qwIn += samples.size() / m_dwChannels;
  while (!samples.empty()) {
    ThrowIfInterrupted();
    const auto done = m_change.Convert(samples, m_piece);
    HandOn(done.nMade, fnTake);
    samples = samples.subspan(done.nTaken * m_dwChannels);
  }
}

void C_Resampler::End(const PFN_Take& fnTake) {
  // Without frames there is nothing in it that could come out.
  while (m_qwIn != 0) {
    ThrowIfInterrupted();
    const auto done = m_change.Convert({}, m_piece);
    if (done.nMade == 0) break;
    HandOn(done.nMade, fnTake);
  }
  Fill(fnTake);
}

void C_Resampler::HandOn(std::size_t nFrames, const PFN_Take& fnTake) {
  const std::uint64_t qwLeft = FramesWanted() - std::min(m_qwOut, FramesWanted());
  const auto nWanted = static_cast<std::size_t>(std::min<std::uint64_t>(nFrames, qwLeft));
  if (nWanted == 0) return;
  fnTake(std::span<const float>(m_piece).first(nWanted * m_dwChannels));
  m_qwOut += nWanted;
}

// Where libsoxr rounds the other way.
void C_Resampler::Fill(const PFN_Take& fnTake) {
  std::fill(m_piece.begin(), m_piece.end(), 0.0F);
  while (m_qwOut < FramesWanted()) HandOn(m_piece.size() / m_dwChannels, fnTake);
}

std::uint64_t C_Resampler::FramesWanted() const noexcept {
  return ScaledFrames(m_qwIn, m_dwFrom, m_dwTo);
}

}  // namespace tool
