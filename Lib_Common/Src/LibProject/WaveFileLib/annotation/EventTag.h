// SPDX-License-Identifier: Apache-2.0
//
// A moment in a sound with a command attached. The moment is kept in the unit in which it was set,
// and converted to the other unit through the sample rate on request.
#pragma once

#include <atomic>
#include <cstddef>

#include "CLString.h"
#include "interface/I_EventTag.h"

// The unit in which a moment was set.
enum E_EventPosUnit : unsigned int {
  EVENT_POS_TIME = 0,    // milliseconds
  EVENT_POS_SAMPLE = 1,  // samples
};

class C_EventTag : public I_EventTag {
 public:
  // dwCommandIndex holds the main index in its upper 16 bits and the sub index in its lower 16.
  // dwPos is in the unit that eUnit names.
  C_EventTag(unsigned int dwCommandIndex, unsigned int dwPos, const char* pszDescription,
             unsigned int dwData, unsigned int dwSampleRate, E_EventPosUnit eUnit);

  unsigned short GetMainCommandIndex() override;
  unsigned short GetSubCommandIndex() override;
  void SetCommandIndex(unsigned short wMain, unsigned short wSub) override;
  // Truncated; a moment that does not fit in 32 bits gives 2^32 - 1.
  unsigned int GetTime() override;
  void SetTime(unsigned int dwTime) override;
  const char* GetDescription() override { return m_strDescription.GetContent(); }
  void SetDescription(const char* pszDescription) override;
  unsigned int GetData() override { return m_dwData; }
  void SetData(unsigned int dwData) override { m_dwData = dwData; }
  // Truncated; a moment that does not fit in 32 bits gives 2^32 - 1.
  unsigned int GetSamplePos() override;
  void SetSamplePos(unsigned int dwSamplePos) override;

  // The rate for conversions from now on; the moment itself stays as it was set.
  void SetSampleRate(unsigned int dwSampleRate) {
    ++s_nMoves;
    m_dwSampleRate = dwSampleRate;
  }

  // False where asking for the moment in this unit stops the program.
  [[nodiscard]] bool HasMomentIn(E_EventPosUnit eUnit) const {
    return eUnit == m_eUnit || m_dwSampleRate > 0;
  }
  // How often the moment or the rate of any tag was set. As long as this number stays, so does the
  // order of every list.
  [[nodiscard]] static std::size_t Moves() { return s_nMoves; }

 private:
  inline static std::atomic<std::size_t> s_nMoves = 0;

  unsigned int m_dwCommandIndex;
  unsigned int m_dwTime;
  unsigned int m_dwSamplePos;
  C_CLString m_strDescription;
  unsigned int m_dwData;
  unsigned int m_dwSampleRate;
  E_EventPosUnit m_eUnit;
};
