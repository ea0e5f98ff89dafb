// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <kiss_fftr.h>

#include <complex>
#include <cstddef>
#include <memory>
#include <span>

namespace tool {

// Fourier transforms of real signals, all of one even length.
class C_RealTransform {
 public:
  explicit C_RealTransform(std::size_t nLength);

  [[nodiscard]] std::size_t Length() const noexcept { return m_nLength; }
  [[nodiscard]] std::size_t Bins() const noexcept { return m_nLength / 2 + 1; }

  // Length() samples to Bins() frequencies, from 0 to half of the rate.
  void Forward(std::span<const float> samples, std::span<std::complex<float>> bins);
  // And back, times Length().
  void Backward(std::span<const std::complex<float>> bins, std::span<float> samples);

 private:
  struct S_Free {
    void operator()(kiss_fftr_state* pState) const noexcept { kiss_fftr_free(pState); }
  };
  using C_StatePtr = std::unique_ptr<kiss_fftr_state, S_Free>;
  [[nodiscard]] C_StatePtr Make(bool bBackward) const;

  std::size_t m_nLength;
  C_StatePtr m_forward;
  C_StatePtr m_backward;  // made when it is first needed
};

}  // namespace tool
