// SPDX-License-Identifier: Apache-2.0
#include "sound/SampleSum.h"

#include <bit>
#include <utility>

namespace tool {
namespace {

constexpr std::uint64_t kPrime = 0x100000001B3U;
constexpr float kFullScale16 = 32768.0F;
constexpr float kFullScale32 = 2147483648.0F;

std::uint32_t BitsOf(float fSample) { return std::bit_cast<std::uint32_t>(fSample); }
std::uint32_t BitsOf(std::int16_t nSample) {
  return BitsOf(static_cast<float>(nSample) / kFullScale16);
}
std::uint32_t BitsOf(std::int32_t nSample) {
  return BitsOf(static_cast<float>(nSample) / kFullScale32);
}
// As floating point of 32 bits, like the others.
std::uint32_t BitsOf(double dSample) { return BitsOf(static_cast<float>(dSample)); }

}  // namespace

template <typename Sample>
void C_SampleSum::Add(std::span<const Sample> samples) noexcept {
  std::uint64_t qwSum = m_qwSum;
  for (const Sample sample : samples) qwSum = (qwSum ^ BitsOf(sample)) * kPrime;
  m_qwSum = qwSum;
}

template void C_SampleSum::Add(std::span<const std::int16_t> samples) noexcept;
template void C_SampleSum::Add(std::span<const std::int32_t> samples) noexcept;
template void C_SampleSum::Add(std::span<const float> samples) noexcept;
template void C_SampleSum::Add(std::span<const double> samples) noexcept;

C_SummedSound::C_SummedSound(C_SoundInputPtr sound) : C_WrappedSound(std::move(sound)) {}

void C_SummedSound::Seek(std::uint64_t qwFrame) {
  Wrapped().Seek(qwFrame);
  if (qwFrame == 0) m_sum.Reset();
}

}  // namespace tool
