// SPDX-License-Identifier: Apache-2.0
#include "heron/RangeCoder.h"

namespace heron {

void C_RangeEncoder::WriteSymbol(std::uint32_t nCumulative, std::uint32_t nFrequency) {
  const std::uint32_t dwUnit = m_dwRange >> kFrequencyBits;
  m_qwLow += std::uint64_t{dwUnit} * nCumulative;
  m_dwRange = dwUnit * nFrequency;
  Normalise();
}

void C_RangeEncoder::WriteRaw(std::uint32_t nValue, int nBits) {
  m_dwRange >>= nBits;
  m_qwLow += std::uint64_t{m_dwRange} * nValue;
  Normalise();
}

void C_RangeEncoder::Finish() {
  // The value of the interval with the most zero bits at its end; the zeros need not be written.
  for (int nBit = 32; nBit >= 0; --nBit) {
    const std::uint64_t qwStep = std::uint64_t{1} << nBit;
    const std::uint64_t qwRounded = (m_qwLow + qwStep - 1) & ~(qwStep - 1);
    if (qwRounded < m_qwLow + m_dwRange) {
      m_qwLow = qwRounded;
      break;
    }
  }
  const std::size_t nBefore = m_bytes.size();
  // One byte more than the value has, since the last is only held back.
  for (int n = 0; n < 5; ++n) ShiftOut();
  for (std::size_t n = 0; n < C_RangeDecoder::kMaxMissing; ++n) {
    if (m_bytes.size() > nBefore && m_bytes.back() == 0) m_bytes.pop_back();
  }
}

void C_RangeEncoder::Normalise() {
  while (m_dwRange < (1u << 24)) {
    m_dwRange <<= 8;
    ShiftOut();
  }
}

void C_RangeEncoder::ShiftOut() {
  const bool bCarry = m_qwLow >> 32 != 0;
  const auto byTop = static_cast<std::uint8_t>(m_qwLow >> 24);
  if (m_qwHeld == 0 || bCarry || byTop != 0xFF) {
    if (m_qwHeld > 0) {
      m_bytes.push_back(static_cast<std::uint8_t>(m_byFirstHeld + (bCarry ? 1 : 0)));
      m_bytes.insert(m_bytes.end(), static_cast<std::size_t>(m_qwHeld - 1),
                     static_cast<std::uint8_t>(bCarry ? 0x00 : 0xFF));
    }
    m_byFirstHeld = byTop;
    m_qwHeld = 0;
  }
  ++m_qwHeld;
  m_qwLow = (m_qwLow & 0x00FFFFFF) << 8;
}

C_RangeDecoder::C_RangeDecoder(std::span<const std::uint8_t> bytes) noexcept : m_bytes(bytes) {
  for (int n = 0; n < 4; ++n) m_dwCode = m_dwCode << 8 | NextByte();
}

}  // namespace heron
