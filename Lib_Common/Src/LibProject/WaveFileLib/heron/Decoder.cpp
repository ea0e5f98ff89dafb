// SPDX-License-Identifier: Apache-2.0
#include "heron/Decoder.h"

#include <limits>

#include "heron/Configuration.h"

namespace heron {
std::optional<S_Count> ReadCount(std::span<const std::uint8_t> bytes) noexcept {
  constexpr std::size_t kMostBytes = 5;
  std::uint64_t qwCount = 0;
  for (std::size_t n = 0; n < bytes.size() && n < kMostBytes; ++n) {
    qwCount |= std::uint64_t{bytes[n] & 0x7Fu} << (7 * n);
    if (bytes[n] < 0x80) return S_Count{qwCount, n + 1};
  }
  return std::nullopt;
}

std::optional<C_Decoder> C_Decoder::Open(std::span<const std::uint8_t> coded, int nSampleRate) {
  if (!IsSupportedSampleRate(nSampleRate)) return std::nullopt;
  const auto count = ReadCount(coded);
  if (!count || count->qwCount == 0) return std::nullopt;
  if (count->qwCount > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  const int nLength = FrameLength(nSampleRate);
  const auto nFrameLength = static_cast<std::uint64_t>(nLength);
  const std::uint64_t qwFrames = (count->qwCount + nFrameLength - 1) / nFrameLength;
  if (coded.size() < qwFrames) return std::nullopt;
  C_Decoder decoder(coded.subspan(count->nBytes), static_cast<std::size_t>(count->qwCount),
                    nLength);
  decoder.m_bPadded = coded.size() == qwFrames;
  return decoder;
}

C_Decoder::C_Decoder(std::span<const std::uint8_t> frames, std::size_t nSamples, int nLength)
    : m_nSamples(nSamples),
      m_decoder(frames),
      m_reader(nLength),
      m_transform(nLength),
      m_coefficients(static_cast<std::size_t>(nLength)) {}

bool C_Decoder::DecodeFrame(std::span<std::int16_t> samples) noexcept {
  // The first frame of coefficients only starts the overlap; the second one overwrites its samples.
  for (int nFrames = m_bLapRead ? 1 : 2; nFrames > 0; --nFrames) {
    if (!m_reader.Read(m_decoder, m_coefficients) || m_decoder.Unread() < 0) return false;
    m_transform.Transform(m_coefficients, samples);
  }
  m_bLapRead = true;
  return true;
}

bool C_Decoder::IsAtTheEnd() const noexcept {
  return m_bPadded || m_decoder.Unread() <= static_cast<std::ptrdiff_t>(C_EntropyDecoder::kAhead);
}

}  // namespace heron
