// SPDX-License-Identifier: Apache-2.0
#include "measure/RealTransform.h"

#include <new>

namespace tool {
namespace {

// Both are two floats.
static_assert(sizeof(kiss_fft_cpx) == sizeof(std::complex<float>));
static_assert(alignof(kiss_fft_cpx) == alignof(std::complex<float>));

}  // namespace

C_RealTransform::C_RealTransform(std::size_t nLength)
    : m_nLength(nLength), m_forward(Make(false)) {}

void C_RealTransform::Forward(std::span<const float> samples, std::span<std::complex<float>> bins) {
  kiss_fftr(m_forward.get(), samples.data(), reinterpret_cast<kiss_fft_cpx*>(bins.data()));
}

void C_RealTransform::Backward(std::span<const std::complex<float>> bins,
                               std::span<float> samples) {
  if (!m_backward) m_backward = Make(true);
  kiss_fftri(m_backward.get(), reinterpret_cast<const kiss_fft_cpx*>(bins.data()), samples.data());
}

C_RealTransform::C_StatePtr C_RealTransform::Make(bool bBackward) const {
  C_StatePtr state(
      kiss_fftr_alloc(static_cast<int>(m_nLength), bBackward ? 1 : 0, nullptr, nullptr));
  if (!state) throw std::bad_alloc();
  return state;
}

}  // namespace tool
