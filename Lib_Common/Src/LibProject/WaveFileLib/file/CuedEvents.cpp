// SPDX-License-Identifier: Apache-2.0
#include "file/CuedEvents.h"

#include <algorithm>

namespace cuedevents {
namespace {

constexpr unsigned int kDataChunkID = 0x61746164;  // "data", the first character in the low byte

}  // namespace

void C_ByID::Sort() {
  std::stable_sort(m_values.begin(), m_values.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
}

std::optional<unsigned int> C_ByID::Find(unsigned int dwID) const {
  const auto it =
      std::lower_bound(m_values.begin(), m_values.end(), dwID,
                       [](const auto& entry, unsigned int dwKey) { return entry.first < dwKey; });
  if (it == m_values.end() || it->first != dwID) return std::nullopt;
  return it->second;
}

C_ByID Positions(I_WavDataCueInfo& cueInfo) {
  C_ByID positions;
  for (int i = 0; i < cueInfo.GetCuePointCount(); ++i) {
    I_WavDataCuePoint* pCuePoint = cueInfo.GetCuePointByIndex(i);
    positions.Add(pCuePoint->GetCuePointID(), pCuePoint->GetPosition());
  }
  positions.Sort();
  return positions;
}

void AddPoint(I_WavDataCueInfo& cueInfo, I_WavDataListInfo& listInfo, unsigned int dwID,
              unsigned int dwSamplePos, const char* pszLabel) {
  // The label comes first, in case memory runs out before the cue point: a label without a cue
  // point means nothing, but a cue point without a label would count as the user's.
  listInfo.AddLabel(dwID, pszLabel);
  cueInfo.AddCuePoint(dwID, dwSamplePos, kDataChunkID, 0, 0, dwSamplePos);
}

I_EventTagMgr& ManagerOf(I_WavData& wavData, const vcm::S_AssertSite& site) {
  I_EventTagMgr* pIEventMgr = wavData.GetEventTagMgr();
  VCM_ASSERT(nullptr != pIEventMgr, site.pszFunction, site.pszSource, __LINE__,
             "NULL != pIEventMgr");
  return *pIEventMgr;
}

std::vector<I_EventTag*> EventsOf(I_EventTagMgr& events, const vcm::S_AssertSite& site) {
  I_CLArray<I_EventTag*>* pIEventList = events.GetEventList();
  VCM_ASSERT(nullptr != pIEventList, site.pszFunction, site.pszSource, __LINE__,
             "NULL != pIEventList");
  std::vector<I_EventTag*> list;
  for (int i = 0; i < pIEventList->GetSize(); ++i) {
    I_EventTag* pIEvent = pIEventList->GetItemByIndex(i);
    VCM_ASSERT(nullptr != pIEvent, site.pszFunction, site.pszSource, __LINE__, "NULL != pIEvent");
    list.push_back(pIEvent);
  }
  return list;
}

void AddEvents(I_EventTagMgr& events, const std::vector<C_EventTagMgr::S_SampleEvent>& placed) {
  if (auto* const pOwnKind = dynamic_cast<C_EventTagMgr*>(&events)) {
    pOwnKind->AddEventsBySamplePos(placed);
    return;
  }
  for (const auto& [dwSamplePos, wMain, wSub, dwData] : placed) {
    events.AddEventBySamplePos(wMain, wSub, dwSamplePos, "", dwData);
  }
}

}  // namespace cuedevents
