// SPDX-License-Identifier: Apache-2.0
//
// Treats any bytes as the payload of a "cue " and of a "smpl" chunk: loads it, finds every cue
// point and saves it.
//
//   cmake --preset fuzz && cmake --build --preset fuzz --target smpl_cue
//   build/fuzz/bin/smpl_cue -max_len=4096 -max_total_time=60 CORPUS_DIRECTORY
//
// Input: the payload. Seeds: what our own writers save for either chunk.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Require.h"
#include "RiffFile.h"
#include "chunk/WavDataCueInfo.h"
#include "chunk/WavDataSamplerInfo.h"
#include "sound/WavInfo.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

template <typename Info>
Bytes Save(Info& info) {
  C_RiffChunk chunk("test", info.GetChunkLength());
  Require(info.SaveInfo(&chunk));
  Bytes payload(chunk.GetDataLength());
  Require(chunk.GetData(payload.data(), chunk.GetDataLength(), 0));
  return payload;
}

// A payload in memory always loads. It asks for no more bytes than it had, and what it saves loads
// and saves the same again.
template <typename Info>
void CheckRoundTrip(Info& info, I_WavInfo* pWavInfo, C_RiffChunk& chunk, unsigned int cbLeast) {
  Require(info.LoadInfo(&chunk));
  Require(info.GetChunkLength() <= std::max(chunk.GetDataLength(), cbLeast));
  const Bytes saved = Save(info);
  C_RiffChunk savedChunk("test", static_cast<unsigned int>(saved.size()));
  savedChunk.SetData(saved.data());
  Info again(pWavInfo);
  Require(again.LoadInfo(&savedChunk));
  Require(Save(again) == saved);
}

void CheckFinding(C_WavDataCueInfo& info) {
  for (int i = 0; i < info.GetCuePointCount(); ++i) {
    const unsigned int dwID = info.GetCuePointByIndex(i)->GetCuePointID();
    int nIndex = -1;
    Require(info.FindCuePointByID(dwID, &nIndex) != nullptr);
    Require(nIndex <= i && info.GetCuePointByIndex(nIndex)->GetCuePointID() == dwID);
  }
}

void CheckLoops(C_WavDataSamplerInfo& info) {
  for (unsigned int i = 0; i < info.GetSampleLoopNum(); ++i) {
    I_WavDataSampleLoop* pLoop = info.GetSampleLoopByIndex(static_cast<int>(i));
    Require(pLoop->GetEndByteOffset() == pLoop->GetEndSampleOffset() * 4);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_RiffChunk chunk("test", static_cast<unsigned int>(cbData));
  chunk.SetData(pData);
  C_WavInfo wavInfo;
  wavInfo.SetInfoData(44100, 0, 2, 16, 16, true);
  C_WavDataCueInfo cueInfo(&wavInfo);
  CheckRoundTrip(cueInfo, &wavInfo, chunk, 4);
  CheckFinding(cueInfo);
  C_WavDataSamplerInfo samplerInfo(&wavInfo);
  CheckRoundTrip(samplerInfo, &wavInfo, chunk, 36);
  CheckLoops(samplerInfo);
  return 0;
}
