// SPDX-License-Identifier: Apache-2.0
#include "heron/RangeCoder.h"

namespace heron {

void C_RangeEncoder::WriteSymbol(std::uint32_t nCumulative, std::uint32_t nFrequency) {
  const std::uint64_t qwUnit = m_qwRange >> kFrequencyBits;
  m_qwRange = qwUnit * nFrequency;
  Advance(qwUnit * nCumulative);
}

void C_RangeEncoder::WriteRaw(std::uint32_t nValue, int nBits) {
  m_qwRange >>= nBits;
  Advance(m_qwRange * nValue);
}

void C_RangeEncoder::Finish() {
  // Rounding up to a multiple of 2^n may carry, which is as good as any value.
  for (int nZeros = 63; nZeros > 0; --nZeros) {
    const std::uint64_t qwStep = std::uint64_t{1} << nZeros;
    const std::uint64_t qwUp = (0 - m_qwLow) & (qwStep - 1);
    if (qwUp >= m_qwRange) continue;
    m_qwLow += qwUp;
    if (m_qwLow < qwUp) Carry();
    break;
  }
  PutTop(8);
  for (int n = 0; n < 8 && m_bytes.back() == 0; ++n) m_bytes.pop_back();
}

void C_RangeEncoder::Advance(std::uint64_t qwBy) {
  m_qwLow += qwBy;
  if (m_qwLow < qwBy) Carry();
  if (m_qwRange >> 32 != 0) return;
  PutTop(4);
  m_qwLow <<= 32;
  m_qwRange <<= 32;
}

// The sequence as a whole stays below 1, so there is a byte to take the carry.
void C_RangeEncoder::Carry() noexcept {
  for (std::size_t n = m_bytes.size(); n > m_nFirst && ++m_bytes[n - 1] == 0; --n) continue;
}

void C_RangeEncoder::PutTop(int nBytes) {
  for (int n = 0; n < nBytes; ++n)
    m_bytes.push_back(static_cast<std::uint8_t>(m_qwLow >> (56 - 8 * n)));
}

C_RangeDecoder::C_RangeDecoder(std::span<const std::uint8_t> bytes) noexcept : m_rest(bytes) {
  m_qwCode = std::uint64_t{Next4Bytes()} << 32;
  m_qwCode |= Next4Bytes();
}

std::uint32_t C_RangeDecoder::Next4Bytes() noexcept {
  const std::size_t nHeld = std::min<std::size_t>(m_rest.size(), 4);
  std::uint32_t nValue = 0;
  for (std::size_t n = 0; n < 4; ++n)
    nValue = nValue << 8 | (n < nHeld ? m_rest[n] : std::uint8_t{0});
  m_rest = m_rest.subspan(nHeld);
  m_nMissing += 4 - nHeld;
  return nValue;
}

}  // namespace heron
