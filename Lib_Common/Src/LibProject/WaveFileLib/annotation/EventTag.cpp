// SPDX-License-Identifier: Apache-2.0
#include "annotation/EventTag.h"

#include <limits>

#include "VcmAssert.h"

namespace {

constexpr const char* kSource = "WaveFileLib/EventTag";
constexpr double kMillisecondsPerSecond = 1000.0;

unsigned int Truncated(double fValue) {
  constexpr unsigned int dwMax = std::numeric_limits<unsigned int>::max();
  return fValue >= dwMax ? dwMax : static_cast<unsigned int>(fValue);
}

}  // namespace

C_EventTag::C_EventTag(unsigned int dwCommandIndex, unsigned int dwPos, const char* pszDescription,
                       unsigned int dwData, unsigned int dwSampleRate, E_EventPosUnit eUnit)
    : m_dwCommandIndex(dwCommandIndex),
      m_dwTime(eUnit == EVENT_POS_TIME ? dwPos : 0),
      m_dwSamplePos(eUnit == EVENT_POS_SAMPLE ? dwPos : 0),
      m_strDescription(pszDescription),
      m_dwData(dwData),
      m_dwSampleRate(dwSampleRate),
      m_eUnit(eUnit) {}

unsigned short C_EventTag::GetMainCommandIndex() {
  return static_cast<unsigned short>(m_dwCommandIndex >> 16);
}

unsigned short C_EventTag::GetSubCommandIndex() {
  return static_cast<unsigned short>(m_dwCommandIndex & 0xFFFFu);
}

void C_EventTag::SetCommandIndex(unsigned short wMain, unsigned short wSub) {
  m_dwCommandIndex = static_cast<unsigned int>(wMain) << 16 | wSub;
}

unsigned int C_EventTag::GetTime() {
  if (m_eUnit != EVENT_POS_SAMPLE) return m_dwTime;
  VCM_ASSERT(m_dwSampleRate > 0, "GetTime", kSource, 42, "m_dwSampleRate > 0");
  return Truncated(m_dwSamplePos * kMillisecondsPerSecond / m_dwSampleRate);
}

void C_EventTag::SetTime(unsigned int dwTime) {
  ++s_nMoves;
  m_dwTime = dwTime;
  m_eUnit = EVENT_POS_TIME;
}

void C_EventTag::SetDescription(const char* pszDescription) {
  m_strDescription.SetContent(pszDescription);
}

unsigned int C_EventTag::GetSamplePos() {
  if (m_eUnit != EVENT_POS_TIME) return m_dwSamplePos;
  VCM_ASSERT(m_dwSampleRate > 0, "GetSamplePos", kSource, 65, "m_dwSampleRate > 0");
  return Truncated(static_cast<double>(m_dwTime) * m_dwSampleRate / kMillisecondsPerSecond);
}

void C_EventTag::SetSamplePos(unsigned int dwSamplePos) {
  ++s_nMoves;
  m_dwSamplePos = dwSamplePos;
  m_eUnit = EVENT_POS_SAMPLE;
}
