// SPDX-License-Identifier: Apache-2.0
#include "compare/SampleSource.h"

#include "base/Interrupt.h"

namespace tool {
namespace {

constexpr double kFullScale = 2147483648.0;

template <typename Sample>
std::size_t ReadAs(I_SoundInput& input, std::vector<Sample>& buffer, std::span<double> samples,
                   double dUnit) {
  buffer.resize(samples.size());
  const std::size_t nFrames = input.Read(std::span(buffer));
  const std::size_t nSamples = nFrames * input.Info().dwChannels;
  for (std::size_t n = 0; n < nSamples; ++n) samples[n] = static_cast<double>(buffer[n]) / dUnit;
  return nFrames;
}

}  // namespace

C_SampleSource::C_SampleSource(I_SoundInput& input)
    : m_input(input), m_nChannels(input.Info().dwChannels), m_bIntegers(input.Info().dwBits != 0) {}

void C_SampleSource::Rewind() { m_input.Seek(0); }

std::size_t C_SampleSource::Read(std::span<double> samples) {
  std::size_t nDone = 0;
  while (samples.size() >= m_nChannels) {
    ThrowIfInterrupted();
    const std::size_t nFrames = ReadSome(samples);
    if (nFrames == 0) break;
    nDone += nFrames;
    samples = samples.subspan(nFrames * m_nChannels);
  }
  return nDone;
}

std::size_t C_SampleSource::ReadSome(std::span<double> samples) {
  if (m_bIntegers) return ReadAs(m_input, m_integers, samples, kFullScale);
  return ReadAs(m_input, m_floats, samples, 1.0);
}

}  // namespace tool
