// SPDX-License-Identifier: Apache-2.0
#include "compressed/CodecBuffer.h"

#include <algorithm>

C_Buffer::C_Buffer(const unsigned char* pbyData, std::size_t cbData)
    : m_pbyData(pbyData), m_pbyWritable(nullptr), m_cbData(pbyData == nullptr ? 0 : cbData) {}

C_Buffer::C_Buffer(unsigned char* pbyData, std::size_t cbData)
    : m_pbyData(pbyData), m_pbyWritable(pbyData), m_cbData(pbyData == nullptr ? 0 : cbData) {}

short C_Buffer::GetShort() {
  unsigned int dwValue = 0;
  if (Remaining() >= 2) dwValue = m_pbyData[m_cbPos] | unsigned{m_pbyData[m_cbPos + 1]} << 8U;
  Skip(2);
  return static_cast<short>(dwValue);
}

void C_Buffer::SetShort(short nValue) {
  const auto wValue = static_cast<unsigned short>(nValue);
  if (Remaining() >= 2 && m_pbyWritable != nullptr) {
    m_pbyWritable[m_cbPos] = static_cast<unsigned char>(wValue);
    m_pbyWritable[m_cbPos + 1] = static_cast<unsigned char>(wValue >> 8U);
  }
  Skip(2);
}

unsigned char C_Buffer::GetByte() {
  if (!m_bByteAligned) {
    if (Remaining() < 2) {
      SetPos(m_cbData);
      return 0;
    }
    const unsigned int dwUpper = GetNibbleHighFirst();
    return static_cast<unsigned char>(dwUpper << 4U | GetNibbleHighFirst());
  }
  if (EOB()) return 0;
  return m_pbyData[m_cbPos++];
}

unsigned char C_Buffer::GetNibbleHighFirst() { return GetNibble(m_bByteAligned); }

unsigned char C_Buffer::GetNibbleLowFirst() { return GetNibble(!m_bByteAligned); }

void C_Buffer::SetPos(std::size_t cbPos) {
  m_cbPos = std::min(cbPos, m_cbData);
  m_bByteAligned = true;
}

void C_Buffer::Skip(std::size_t cbCount) { SetPos(m_cbPos + std::min(cbCount, Remaining())); }

unsigned char C_Buffer::GetNibble(bool bHighHalf) {
  if (EOB()) return 0;
  const unsigned int dwByte = m_pbyData[m_cbPos];
  if (!m_bByteAligned) ++m_cbPos;
  m_bByteAligned = !m_bByteAligned;
  return static_cast<unsigned char>(bHighHalf ? dwByte >> 4U : dwByte & 0x0FU);
}
