// SPDX-License-Identifier: Apache-2.0
//
// Treats any bytes as the payload of a "cue " and of a "smpl" chunk: loads it, finds every cue
// point and saves it.
//
//   scripts/fuzz.sh 60 smpl_cue
//
// Input: the payload. Seeds: what our own writers save for either chunk.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
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

using C_PlainPoints = std::vector<std::pair<unsigned int, unsigned int>>;

void RequirePoints(C_WavDataCueInfo& info, const C_PlainPoints& points) {
  Require(info.GetCuePointCount() == static_cast<int>(points.size()));
  Require(info.IsValid() == !points.empty());
  for (std::size_t i = 0; i < points.size(); ++i) {
    I_WavDataCuePoint& point = *info.GetCuePointByIndex(static_cast<int>(i));
    Require(point.GetCuePointID() == points[i].first && point.GetPosition() == points[i].second);
  }
}

// Adds and removes points here and in a plain list of identifiers and positions.
void CheckEditing(C_WavDataCueInfo& info, std::span<const std::uint8_t> choices) {
  C_PlainPoints points;
  for (int i = 0; i < info.GetCuePointCount(); ++i) {
    I_WavDataCuePoint& point = *info.GetCuePointByIndex(i);
    points.emplace_back(point.GetCuePointID(), point.GetPosition());
  }
  unsigned int dwPosition = 0;
  for (const std::uint8_t byChoice : choices) {
    const unsigned int dwID = byChoice / 4U;
    const auto known = std::find_if(points.begin(), points.end(),
                                    [&](const auto& point) { return point.first == dwID; });
    const int nIndex = static_cast<int>(dwID) - 1;
    const bool bInside = nIndex >= 0 && nIndex < static_cast<int>(points.size());
    switch (byChoice % 4) {
      case 0:
        Require(info.RemoveCuePointByID(dwID) == (known != points.end()));
        if (known != points.end()) points.erase(known);
        break;
      case 1:
        Require(info.RemoveCuePointByIndex(nIndex) == bInside);
        if (bInside) points.erase(points.begin() + nIndex);
        break;
      default:
        Require(info.AddCuePoint(dwID, ++dwPosition, 0x61746164, 1, 2, 3));
        if (known != points.end()) known->second = dwPosition;
        if (known == points.end()) points.emplace_back(dwID, dwPosition);
    }
    RequirePoints(info, points);
  }
  info.Reset();
  RequirePoints(info, {});
}

// Each field is what it was set to; a loop is added at the end and taken out anywhere.
void CheckSampler(C_WavDataSamplerInfo& info, unsigned int dwValue) {
  info.SetManufactureID(dwValue);
  info.SetProductID(dwValue + 1);
  info.SetSamplePeriod(dwValue + 2);
  info.SetMIDIUnityNote(dwValue + 3);
  info.SetMIDIPitchFraction(dwValue + 4);
  info.SetSMPTEOffset(dwValue + 5);
  Require(info.GetManufactureID() == dwValue && info.GetProductID() == dwValue + 1);
  Require(info.GetSamplePeriod() == dwValue + 2 && info.GetMIDIUnityNote() == dwValue + 3);
  Require(info.GetMIDIPitchFraction() == dwValue + 4 && info.GetSMPTEOffset() == dwValue + 5);
  const unsigned int dwLoops = info.GetSampleLoopNum();
  Require(info.AddSampleLoop(dwValue, LOOP_FORWARD, 1, dwValue, 2, 3));
  Require(info.GetSampleLoopNum() == dwLoops + 1 && info.IsValid());
  Require(info.GetSampleLoopByIndex(static_cast<int>(dwLoops))->GetCuePointID() == dwValue);
  const int nIndex = static_cast<int>(dwValue % 8) - 1;
  const bool bInside = nIndex >= 0 && nIndex <= static_cast<int>(dwLoops);
  Require(info.RemoveSampleLoopByIndex(nIndex) == bInside);
  Require(info.GetSampleLoopNum() == dwLoops + (bInside ? 0 : 1));
  info.ResetSampleLoopInformation();
  Require(!info.IsValid() && info.GetProductID() == dwValue + 1);
  info.Reset();
  Require(info.GetProductID() == 0 && info.GetChunkLength() == 36);
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
  CheckEditing(cueInfo, {pData, std::min<std::size_t>(cbData, 16)});
  CheckSampler(samplerInfo, static_cast<unsigned int>(cbData));
  return 0;
}
