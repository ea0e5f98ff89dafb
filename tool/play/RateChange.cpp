// SPDX-License-Identifier: Apache-2.0
#include "play/RateChange.h"

#include <new>

namespace tool {
namespace {

soxr_t Make(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels) {
  const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  soxr_error_t pszError = nullptr;
  return soxr_create(dwFrom, dwTo, dwChannels, &pszError, &io, &quality, nullptr);
}

}  // namespace

C_RateChange::C_RateChange(std::uint32_t dwFrom, std::uint32_t dwTo, std::uint32_t dwChannels)
    : m_pConverter(Make(dwFrom, dwTo, dwChannels), &soxr_delete), m_dwChannels(dwChannels) {
  if (m_pConverter == nullptr) throw std::bad_alloc();
}

C_RateChange::S_Done C_RateChange::Convert(std::span<const float> in, std::span<float> out) {
  S_Done done;
  const soxr_error_t pszError =
      soxr_process(m_pConverter.get(), in.empty() ? nullptr : in.data(), in.size() / m_dwChannels,
                   &done.nTaken, out.data(), out.size() / m_dwChannels, &done.nMade);
  if (pszError != nullptr) throw std::bad_alloc();
  return done;
}

void C_RateChange::Restart() {
  if (soxr_clear(m_pConverter.get()) != nullptr) throw std::bad_alloc();
}

}  // namespace tool
