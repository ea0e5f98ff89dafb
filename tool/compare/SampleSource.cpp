// SPDX-License-Identifier: Apache-2.0
#include "compare/SampleSource.h"

#include "base/Interrupt.h"

namespace tool {
C_SampleSource::C_SampleSource(I_SoundInput& input)
    : m_input(input), m_nChannels(input.Info().dwChannels) {}

void C_SampleSource::Rewind() { m_input.Seek(0); }

std::size_t C_SampleSource::Read(std::span<double> samples) {
  std::size_t nDone = 0;
  while (samples.size() >= m_nChannels) {
    ThrowIfInterrupted();
    const std::size_t nFrames = m_input.Read(samples);
    if (nFrames == 0) break;
    nDone += nFrames;
    samples = samples.subspan(nFrames * m_nChannels);
  }
  return nDone;
}

}  // namespace tool
