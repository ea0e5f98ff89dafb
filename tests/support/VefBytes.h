// SPDX-License-Identifier: Apache-2.0
//
// VEF containers, for C_RiffBytes, and the contents of sounds that were read from them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KestrelBytes.h"
#include "WavBytes.h"
#include "interface/I_WavFile.h"

// A "vafm" payload as the library writes it.
inline C_Bytes VafmBytes(std::uint16_t wType, std::uint16_t wVersion = 256) {
  return Join({U16(wVersion), U16(wType), U16(16000), U32(0), {1, 0}, U32(0)});
}

// A 16 kHz mono 16-bit container with cbData ramp bytes, to be extended with Chunk.
inline C_RiffBytes MonoVef(std::size_t cbData) { return MonoWav(cbData, "VEFF"); }

// The same with a Kestrel stream of nFrames frames of a voice at 16000 bits per second.
inline C_RiffBytes KestrelVefBytes(std::size_t cbData, std::size_t nFrames) {
  C_RiffBytes riff = MonoVef(cbData);
  riff.Chunk("vafm", VafmBytes(14)).Chunk("vdat", C_KestrelBytes(16000).Voice(nFrames).Take());
  return riff;
}

struct S_VefEventSeen {
  unsigned int dwMain = 0;
  unsigned int dwSub = 0;
  unsigned int dwData = 0;
  unsigned int dwSamplePos = 0;

  friend bool operator==(const S_VefEventSeen&, const S_VefEventSeen&) = default;
};
inline void PrintTo(const S_VefEventSeen& event, std::ostream* pStream) {
  *pStream << "(" << event.dwMain << ", " << event.dwSub << ", " << event.dwData << " at "
           << event.dwSamplePos << ")";
}
inline std::vector<S_VefEventSeen> VefEventsOf(I_WavFile& file) {
  std::vector<S_VefEventSeen> seen;
  I_CLArray<I_EventTag*>& events = *file.GetWavData()->GetEventTagMgr()->GetEventList();
  for (int i = 0; i < events.GetSize(); ++i) {
    I_EventTag& event = *events.GetItemByIndex(i);
    seen.push_back({event.GetMainCommandIndex(), event.GetSubCommandIndex(), event.GetData(),
                    event.GetSamplePos()});
  }
  return seen;
}
