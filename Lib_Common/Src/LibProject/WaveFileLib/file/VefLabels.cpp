// SPDX-License-Identifier: Apache-2.0
#include "file/VefLabels.h"

#include <charconv>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "VcmAssert.h"
#include "chunk/WavDataCueInfo.h"
#include "chunk/WavDataListInfo.h"
#include "chunk/WavDataSamplerInfo.h"
#include "file/CuedEvents.h"
#include "file/WavLabels.h"

namespace veflabels {
namespace {

constexpr const char* kSource = "WaveFileLib/VefFile";
constexpr vcm::S_AssertSite kWriteSite{"WriteVef", kSource};
constexpr vcm::S_AssertSite kCheckSite{"CheckFormat", kSource};

using C_IDs = std::set<unsigned int>;
using C_IDMap = std::map<unsigned int, unsigned int>;

// The number in a text that is exactly what "%d" prints; empty for any other text.
std::optional<int> PrintedNumber(std::string_view text) {
  int nValue = 0;
  const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), nValue);
  if (error != std::errc() || std::to_string(nValue) != text) return std::nullopt;
  return nValue;
}

// The two numbers of a text made of prefix, number, separator, number and suffix; empty for any
// other text.
std::optional<std::pair<int, int>> TwoNumbers(std::string_view text, std::string_view prefix,
                                              char chSeparator, std::string_view suffix) {
  if (text.size() < prefix.size() + suffix.size()) return std::nullopt;
  if (!text.starts_with(prefix) || !text.ends_with(suffix)) return std::nullopt;
  text = text.substr(prefix.size(), text.size() - prefix.size() - suffix.size());
  const std::size_t nSeparator = text.find(chSeparator);
  if (nSeparator == std::string_view::npos) return std::nullopt;
  const std::optional<int> nFirst = PrintedNumber(text.substr(0, nSeparator));
  const std::optional<int> nSecond = PrintedNumber(text.substr(nSeparator + 1));
  if (!nFirst || !nSecond) return std::nullopt;
  return std::pair(*nFirst, *nSecond);
}

C_IDs IDsOfLabels(I_WavDataListInfo& listInfo, bool bLibrary) {
  C_IDs ids;
  for (int i = 0; i < listInfo.GetLabelCount(); ++i) {
    unsigned int dwID = 0;
    const char* pszText = listInfo.GetLabelByIndex(i, &dwID);
    if (IsLibraryLabel(pszText) == bLibrary) ids.insert(dwID);
  }
  return ids;
}

C_IDs IDsOfAll(I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo) {
  C_IDs ids = IDsOfLabels(listInfo, false);
  for (int i = 0; i < cueInfo.GetCuePointCount(); ++i) {
    ids.insert(cueInfo.GetCuePointByIndex(i)->GetCuePointID());
  }
  for (int i = 0; i < listInfo.GetLtxtCount(); ++i) {
    unsigned int dwID = 0;
    listInfo.GetLtxtByIndex(i, &dwID, nullptr);
    ids.insert(dwID);
  }
  return ids;
}

C_IDs IDsOfLoops(I_WavDataSamplerInfo& samplerInfo) {
  C_IDs ids;
  for (int i = 0; static_cast<unsigned int>(i) < samplerInfo.GetSampleLoopNum(); ++i) {
    ids.insert(samplerInfo.GetSampleLoopByIndex(i)->GetCuePointID());
  }
  return ids;
}

// Gives a free identifier to each of the ids from 1 to dwEvents, because the events need those for
// themselves.
C_IDMap MakeWay(const C_IDs& ids, const C_IDs& taken, unsigned int dwEvents) {
  C_IDMap newIDs;
  unsigned int dwFree = dwEvents + 1;
  for (const unsigned int dwID : ids) {
    if (dwID == 0 || dwID > dwEvents) continue;
    while (taken.contains(dwFree)) ++dwFree;
    newIDs[dwID] = dwFree++;
  }
  return newIDs;
}

unsigned int NewOf(const C_IDMap& newIDs, unsigned int dwID) {
  const auto newID = newIDs.find(dwID);
  return newID == newIDs.end() ? dwID : newID->second;
}

// The annotations of a sound of the library's own class, which can be changed in place.
struct S_Annotations {
  C_WavDataListInfo& listInfo;
  C_WavDataCueInfo& cueInfo;
  C_WavDataSamplerInfo& samplerInfo;
};

// Removes the labels of the library, and the cue points and texts that belong to them. Cue points
// and texts that share their identifier with a label of the user belong to the user and stay.
//
// Here and below, everything that may run out of memory is done before the first change: if only
// half of the changes were made, cue points of events would become cue points of the user.
void RemoveLibraryLabels(const S_Annotations& annotations) {
  const C_IDs library = IDsOfLabels(annotations.listInfo, true);
  const C_IDs user = IDsOfLabels(annotations.listInfo, false);
  const vcm::C_NewID keep = [&](unsigned int dwID) -> std::optional<unsigned int> {
    if (library.contains(dwID) && !user.contains(dwID)) return std::nullopt;
    return dwID;
  };
  annotations.listInfo.RemoveLabels(&IsLibraryLabel);
  annotations.listInfo.Renumber(keep);
  annotations.cueInfo.Renumber(keep);
}

void RenumberAfter(unsigned int dwEvents, const S_Annotations& annotations) {
  const C_IDs ids = IDsOfAll(annotations.listInfo, annotations.cueInfo);
  C_IDs taken = IDsOfLoops(annotations.samplerInfo);
  taken.insert(ids.begin(), ids.end());
  const C_IDMap newIDs = MakeWay(ids, taken, dwEvents);
  if (newIDs.empty()) return;
  const vcm::C_NewID newID = [&](unsigned int dwID) { return NewOf(newIDs, dwID); };
  annotations.listInfo.Renumber(newID);
  annotations.cueInfo.Renumber(newID);
  annotations.samplerInfo.Renumber(newID);
}

}  // namespace

std::string EventLabel(const S_EventLabel& event) {
  // Kept: the numbers are signed, although neither a command nor data is ever below zero. The
  // command of main index 0x8000 therefore begins with a minus sign, and readers expect it. Pinned
  // by EventLabels_AreSignedDecimals.
  const auto nCommand = static_cast<int>(std::uint32_t{event.wMain} << 16 | event.wSub);
  const auto nData = static_cast<int>(event.dwData);
  std::string text = "(";
  text.append(std::to_string(nCommand)).append(",").append(std::to_string(nData));
  return text.append(")");
}

std::optional<S_EventLabel> ParseEventLabel(const char* pszText) {
  const auto numbers = TwoNumbers(pszText, "(", ',', ")");
  if (!numbers) return std::nullopt;
  const auto dwCommand = static_cast<std::uint32_t>(numbers->first);
  return S_EventLabel{static_cast<unsigned short>(dwCommand >> 16),
                      static_cast<unsigned short>(dwCommand),
                      static_cast<unsigned int>(numbers->second)};
}

bool IsLibraryLabel(const char* pszText) {
  const std::string_view text(pszText);
  return text == wavlabels::kSilenceLabel || text == wavlabels::kRegionLabel ||
         TwoNumbers(text, "(", ',', ")") || TwoNumbers(text, "u_", '_', "");
}

void LoadEvents(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo) {
  I_EventTagMgr& events = cuedevents::ManagerOf(wavData, kCheckSite);
  events.RemoveAllEvents();
  if (events.GetSampleRate() == 0) return;
  const cuedevents::C_ByID positions = cuedevents::Positions(cueInfo);
  std::vector<C_EventTagMgr::S_SampleEvent> placed;
  for (int i = 0; i < listInfo.GetLabelCount(); ++i) {
    unsigned int dwID = 0;
    const auto event = ParseEventLabel(listInfo.GetLabelByIndex(i, &dwID));
    const std::optional<unsigned int> dwPosition = positions.Find(dwID);
    if (event && dwPosition) {
      placed.push_back({*dwPosition, event->wMain, event->wSub, event->dwData});
    }
  }
  cuedevents::AddEvents(events, placed);
}

void SaveEvents(I_WavData& wavData, I_WavDataListInfo& listInfo, I_WavDataCueInfo& cueInfo,
                I_WavDataSamplerInfo& samplerInfo) {
  const std::vector<I_EventTag*> events =
      cuedevents::EventsOf(cuedevents::ManagerOf(wavData, kWriteSite), kWriteSite);
  auto* const pOwnList = dynamic_cast<C_WavDataListInfo*>(&listInfo);
  auto* const pOwnCues = dynamic_cast<C_WavDataCueInfo*>(&cueInfo);
  auto* const pOwnSampler = dynamic_cast<C_WavDataSamplerInfo*>(&samplerInfo);
  // Info objects of other classes cannot be renumbered; events are only added to them.
  if (pOwnList != nullptr && pOwnCues != nullptr && pOwnSampler != nullptr) {
    const S_Annotations annotations{*pOwnList, *pOwnCues, *pOwnSampler};
    RemoveLibraryLabels(annotations);
    RenumberAfter(static_cast<unsigned int>(events.size()), annotations);
  }
  unsigned int dwID = 0;
  for (I_EventTag* pIEvent : events) {
    const std::string strLabel = EventLabel(
        {pIEvent->GetMainCommandIndex(), pIEvent->GetSubCommandIndex(), pIEvent->GetData()});
    cuedevents::AddPoint(cueInfo, listInfo, ++dwID, pIEvent->GetSamplePos(), strLabel.c_str());
  }
}

}  // namespace veflabels
