// SPDX-License-Identifier: Apache-2.0
#include "sound/RateChange.h"

#include <new>
#include <string>

#include "base/Failure.h"

namespace tool {
namespace {

soxr_t Make(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels) {
  if (!C_RateChange::CanChange(dwFrom, dwTo)) {
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

bool C_RateChange::CanChange(std::uint32_t dwFrom, std::uint32_t dwTo) noexcept {
  return dwFrom <= std::uint64_t{dwTo} * kGreatestRatio &&
         dwTo <= std::uint64_t{dwFrom} * kGreatestRatio;
}

C_RateChange::C_RateChange(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels)
    : m_converter(Make(dwFrom, dwTo, dwChannels)), m_dwChannels(dwChannels) {}

C_RateChange::S_Done C_RateChange::Convert(std::span<const float> in, std::span<float> out) {
  S_Done done;
  const soxr_error_t pszError =
      soxr_process(m_converter.get(), in.empty() ? nullptr : in.data(), in.size() / m_dwChannels,
                   &done.nTaken, out.data(), out.size() / m_dwChannels, &done.nMade);
  if (pszError != nullptr) throw C_Failure(std::string("rate: ") + pszError);
  return done;
}

void C_RateChange::Restart() {
  if (soxr_clear(m_converter.get()) != nullptr) throw std::bad_alloc();
}

}  // namespace tool
