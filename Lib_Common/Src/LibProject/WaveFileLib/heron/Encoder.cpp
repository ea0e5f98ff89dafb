// SPDX-License-Identifier: Apache-2.0
#include "heron/Encoder.h"

#include <algorithm>

#include "heron/Configuration.h"
#include "heron/EntropyCoder.h"
#include "heron/FixedPoint.h"
#include "heron/FrameSyntax.h"
#include "heron/Loudness.h"
#include "heron/StepSize.h"
#include "heron/Transform.h"

namespace heron {
namespace {

constexpr std::size_t kFramesPerReport = 32;

void WriteCount(std::vector<std::uint8_t>& bytes, std::size_t nCount) {
  for (; nCount >= 0x80; nCount >>= 7) bytes.push_back(static_cast<std::uint8_t>(nCount | 0x80));
  bytes.push_back(static_cast<std::uint8_t>(nCount));
}

// The loudness of a frame, from its coefficients.
int LoudnessOf(std::span<const std::int32_t> coefficients) noexcept {
  std::uint64_t qwSquares = 0;
  for (const std::int64_t nCoefficient : coefficients) {
    qwSquares += static_cast<std::uint64_t>(nCoefficient * nCoefficient);
  }
  return Loudness(qwSquares >> 2 * kCoefficientQ, coefficients.size());
}

// Chooses the step index of each frame in turn.
class C_StepChoice {
 public:
  explicit C_StepChoice(int nOffset) : m_nOffset(nOffset) {}

  int Next(int nLoudness) noexcept {
    // 6 dB of level are 512 in loudness and 4 * 256 in the index, so 5/8 of the level is a factor
    // of 5/4 here.
    const int nWanted = m_nOffset + 5 * nLoudness / 4 + m_nCarried;
    const int nIndex = (nWanted + 128) >> 8;
    m_nCarried = nWanted - (nIndex << 8);
    return std::clamp(nIndex, 0, kSteps - 1);
  }

 private:
  int m_nOffset;
  // The rounding error, which is carried over to the next frame. Otherwise all frames of a sound
  // with steady loudness would change their steps at the same offset, and no offset would fill the
  // allowed size.
  int m_nCarried = 0;
};

// Copies frame nFrame of the samples, with silence after the end of the sound.
void TakeFrame(std::span<const std::int16_t> samples, std::size_t nFrame,
               std::span<std::int16_t> frame) {
  const std::size_t nAt = std::min(nFrame * frame.size(), samples.size());
  const auto rest = samples.subspan(nAt, std::min(frame.size(), samples.size() - nAt));
  std::fill(std::copy(rest.begin(), rest.end(), frame.begin()), frame.end(), std::int16_t{0});
}

}  // namespace

C_Encoder::C_Encoder(std::span<const std::int16_t> samples, int nSampleRate)
    : m_samples(samples), m_nLength(FrameLength(nSampleRate)) {}

std::size_t C_Encoder::FrameCount() const noexcept {
  const auto nLength = static_cast<std::size_t>(m_nLength);
  return (m_samples.size() + nLength - 1) / nLength;
}

std::vector<std::uint8_t> C_Encoder::Encode(int nOffset, const S_Progress& fnProgress) const {
  const auto nLength = static_cast<std::size_t>(m_nLength);
  const std::size_t nFrames = FrameCount();
  std::vector<std::uint8_t> bytes;
  WriteCount(bytes, m_samples.size());
  C_EntropyEncoder encoder(bytes);
  C_ForwardTransform transform(m_nLength);
  C_FrameWriter writer(m_nLength);
  C_StepChoice steps(nOffset);
  std::vector<std::int16_t> frame(nLength);
  std::vector<std::int32_t> coefficients(nLength);
  for (std::size_t n = 0; n <= nFrames; ++n) {
    TakeFrame(m_samples, n, frame);
    transform.Transform(frame, coefficients);
    writer.Write(encoder, coefficients, steps.Next(LoudnessOf(coefficients)));
    if (fnProgress && n > 0 && (n % kFramesPerReport == 0 || n == nFrames)) {
      fnProgress(static_cast<unsigned int>(n));
    }
  }
  encoder.Finish(nFrames);
  return bytes;
}

}  // namespace heron
