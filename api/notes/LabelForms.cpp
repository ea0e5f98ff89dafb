// SPDX-License-Identifier: Apache-2.0
#include "notes/LabelForms.h"

#include <optional>

#include "chunk/WavDataListInfo.h"
#include "file/VefLabels.h"
#include "file/WavLabels.h"

namespace api {
namespace {

using E_Kind = S_LabelMeaning::E_Kind;
using S_WavMeaning = wavlabels::S_LabelMeaning;

// The class library keeps only so much of a label, and looks for a meaning in what it keeps.
std::string SearchedPart(const std::string& strText) {
  return strText.substr(0, C_WavDataListInfo::kMaxLabelText);
}

S_LabelMeaning WavMeaning(const std::string& strText) {
  const S_WavMeaning meaning = wavlabels::ParseLabel(SearchedPart(strText).c_str());
  switch (meaning.eKind) {
    case S_WavMeaning::Kind::Event:
      return {E_Kind::Event, meaning.wMain, meaning.wSub, 0};
    case S_WavMeaning::Kind::Silence:
      return {.eKind = E_Kind::Silence};
    case S_WavMeaning::Kind::Region:
      return {.eKind = E_Kind::Region};
    case S_WavMeaning::Kind::Other:
      break;
  }
  return {};
}

S_LabelMeaning VefMeaning(const std::string& strText) {
  const auto event = veflabels::ParseEventLabel(strText.c_str());
  if (!event) return {};
  return {E_Kind::Event, event->wMain, event->wSub, event->dwData};
}

// The older form, with both indexes in one number.
std::string OlderEventLabel(const S_LabelMeaning& event) {
  const std::uint32_t dwBoth = std::uint32_t{event.wMain} << 16 | event.wSub;
  return "e_" + std::to_string(static_cast<std::int32_t>(dwBoth));
}

bool IsOwnWavLabel(const std::string& strText) {
  const S_LabelMeaning meaning = WavMeaning(strText);
  if (meaning.eKind != E_Kind::Event) return meaning.eKind != E_Kind::None;
  return strText == wavlabels::EventLabel(meaning.wMain, meaning.wSub) ||
         strText == OlderEventLabel(meaning);
}

}  // namespace

S_LabelMeaning MeaningOf(const std::string& strText, E_RiffForm eForm) {
  return eForm == E_RiffForm::Wave ? WavMeaning(strText) : VefMeaning(strText);
}

bool IsOwnLabel(const std::string& strText, E_RiffForm eForm) {
  return eForm == E_RiffForm::Wave ? IsOwnWavLabel(strText)
                                   : VefMeaning(strText).eKind == E_Kind::Event;
}

bool IsRangeLabel(const std::string& strText) {
  return strText == wavlabels::kSilenceLabel || strText == wavlabels::kRegionLabel;
}

std::string OwnEventLabel(const S_NoteEvent& event, E_RiffForm eForm) {
  return eForm == E_RiffForm::Wave ? wavlabels::EventLabel(event.wMain, event.wSub)
                                   : veflabels::EventLabel({event.wMain, event.wSub, event.dwData});
}

}  // namespace api
