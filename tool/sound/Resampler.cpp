// SPDX-License-Identifier: Apache-2.0
#include "sound/Resampler.h"

#include <algorithm>
#include <string>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "sound/ScaledFrames.h"

namespace tool {
namespace {

constexpr std::size_t kPieceSamples = 16384;

soxr_t Make(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels) {
  if (dwFrom / C_Resampler::kGreatestRatio > dwTo || dwTo / C_Resampler::kGreatestRatio > dwFrom) {
    throw C_Failure("rate: " + std::to_string(dwFrom) + " Hz cannot become " +
                    std::to_string(dwTo) + " Hz");
  }
  const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  // The files are what runs in parallel.
  const soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
  soxr_error_t pszError = nullptr;
  soxr* const pMade =
      soxr_create(dwFrom, dwTo, dwChannels, &pszError, &samples, &quality, &runtime);
  if (pMade == nullptr) throw std::bad_alloc();
  return pMade;
}

}  // namespace

C_Resampler::C_Resampler(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels)
    : m_dwFrom(dwFrom),
      m_dwTo(dwTo),
      m_dwChannels(dwChannels),
      m_resampler(Make(dwFrom, dwTo, dwChannels)),
      m_piece(std::max<std::size_t>(kPieceSamples / dwChannels, 1) * dwChannels) {}

void C_Resampler::Put(std::span<const float> samples, const PFN_Take& fnTake) {
  m_qwIn += samples.size() / m_dwChannels;
  while (!samples.empty()) {
    ThrowIfInterrupted();
    std::size_t nUsed = 0;
    const std::size_t nMade = Process(samples.data(), samples.size() / m_dwChannels, &nUsed);
    HandOn(nMade, fnTake);
    samples = samples.subspan(nUsed * m_dwChannels);
  }
}

void C_Resampler::End(const PFN_Take& fnTake) {
  // Without frames there is nothing in it that could come out.
  while (m_qwIn != 0) {
    ThrowIfInterrupted();
    const std::size_t nMade = Process(nullptr, 0, nullptr);
    if (nMade == 0) break;
    HandOn(nMade, fnTake);
  }
  Fill(fnTake);
}

std::size_t C_Resampler::Process(const float* pSamples, std::size_t nFrames, std::size_t* pnUsed) {
  std::size_t nMade = 0;
  const soxr_error_t pszError = soxr_process(m_resampler.get(), pSamples, nFrames, pnUsed,
                                             m_piece.data(), m_piece.size() / m_dwChannels, &nMade);
  if (pszError != nullptr) throw C_Failure(std::string("rate: ") + pszError);
  return nMade;
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
