// SPDX-License-Identifier: Apache-2.0
//
// Attaches one of many to a sound; dwNumber counts them from 0.
#pragma once

#include <cstdlib>

#include "interface/I_WavData.h"
#include "interface/I_WavDataInfo.h"

namespace annotations {

template <typename Info>
Info& InfoOf(I_WavData& sound, int nType) {
  void* pInfo = nullptr;
  if (!sound.GetInfo(nType, &pInfo)) std::abort();
  return *static_cast<Info*>(pInfo);
}

inline void AddEvent(I_WavData& sound, unsigned int dwNumber) {
  const auto wSub = static_cast<unsigned short>(dwNumber % 2);
  sound.GetEventTagMgr()->AddEventBySamplePos(1, wSub, dwNumber, "", 0);
}
inline void AddSegment(I_WavData& sound, unsigned int dwNumber) {
  sound.AddSilenceSegment(dwNumber * 10, dwNumber * 10 + 8);
}
inline void AddRegion(I_WavData& sound, unsigned int dwNumber) {
  sound.AddUncompressRegion(dwNumber * 10, dwNumber * 10 + 8);
}
inline void AddCue(I_WavData& sound, unsigned int dwNumber) {
  auto& cues = InfoOf<I_WavDataCueInfo>(sound, WAV_DATA_INFO_CUE);
  if (!cues.AddCuePoint(dwNumber + 1, dwNumber, 0x61746164, 0, 0, dwNumber)) std::abort();
}
inline void AddLabel(I_WavData& sound, unsigned int dwNumber) {
  AddCue(sound, dwNumber);
  InfoOf<I_WavDataListInfo>(sound, WAV_DATA_INFO_LIST).AddLabel(dwNumber + 1, "Verse");
}
inline void AddChunk(I_WavData& sound, unsigned int /*dwNumber*/) {
  InfoOf<I_WavDataExtraChunkInfo>(sound, WAV_DATA_INFO_EXTRA_CHUNK).AddChunk("note", "kept", 4);
}

}  // namespace annotations
