// SPDX-License-Identifier: Apache-2.0
#include "notes/MarkWriting.h"

#include <limits>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "file/CuedEvents.h"
#include "file/WavLabels.h"
#include "notes/CueIDs.h"
#include "notes/FourCC.h"
#include "notes/LabelForms.h"
#include "notes/LostNotes.h"

namespace api {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
constexpr const char* kTooFar = ": cue points hold no frame or length beyond 32 bits";

C_CueIDs IDsOfOthers(const S_Notes& notes) {
  std::vector<std::uint32_t> ids;
  ids.reserve(notes.cues.size() + notes.labels.size() + notes.texts.size());
  for (const S_NoteCue& cue : notes.cues) ids.push_back(cue.dwID);
  for (const S_NoteLabel& label : notes.labels) ids.push_back(label.dwCueID);
  for (const S_NoteRegionText& text : notes.texts) ids.push_back(text.dwCueID);
  return C_CueIDs(std::move(ids));
}

cuedevents::C_ByID Positions(const std::vector<S_NoteCue>& cues) {
  cuedevents::C_ByID positions;
  for (const S_NoteCue& cue : cues) positions.Add(cue.dwID, cue.dwPosition);
  positions.Sort();
  return positions;
}

class C_MarkWriter {
 public:
  C_MarkWriter(const S_Notes& notes, E_RiffForm eForm)
      : m_notes(notes),
        m_eForm(eForm),
        m_positions(Positions(notes.cues)),
        m_freeIDs(IDsOfOthers(notes)) {}

  S_WrittenMarks Write() {
    std::vector<std::string> lostLabels;
    ChooseLabels(lostLabels);
    m_written.cues = m_notes.cues;
    AddEvents();
    AddRanges(m_notes.silence, "silence", "silence", wavlabels::kSilenceLabel);
    AddRanges(m_notes.regions, "region", "regions", wavlabels::kRegionLabel);
    WriteList();
    for (std::string& strLost : lostLabels) m_written.lost.push_back(std::move(strLost));
    return std::move(m_written);
  }

 private:
  using C_EventKey = std::tuple<std::uint64_t, std::uint16_t, std::uint16_t>;
  struct S_OwnLabel {
    std::uint32_t dwCueID;
    std::string strText;
  };

  void ChooseLabels(std::vector<std::string>& lost) {
    for (std::size_t i = 0; i < m_notes.labels.size(); ++i) {
      const S_NoteLabel& label = m_notes.labels[i];
      const std::optional<unsigned int> dwFrame = m_positions.Find(label.dwCueID);
      const char* pszReason = label.type == FourCC("labl") ? Objection(label, !dwFrame) : nullptr;
      if (pszReason != nullptr) {
        lost.push_back(NameOf(label, i) + pszReason);
        continue;
      }
      m_labels.push_back(&label);
      if (dwFrame && label.type == FourCC("labl")) NoteExpressed(label, *dwFrame);
    }
  }

  // Why a label would not be the same label when the file is read; null when it would.
  [[nodiscard]] const char* Objection(const S_NoteLabel& label, bool bWithoutCue) const {
    if (!bWithoutCue) {
      return IsOwnLabel(label.strText, m_eForm) ? ": readers would take it for an event or a range"
                                                : nullptr;
    }
    // The class library stops the program when it reads such a WAV file.
    const bool bMeansPlace =
        m_eForm == E_RiffForm::Wave &&
        MeaningOf(label.strText, m_eForm).eKind != S_LabelMeaning::E_Kind::None;
    return bMeansPlace ? ": readers would look for its cue point, and there is none" : nullptr;
  }

  void NoteExpressed(const S_NoteLabel& label, std::uint32_t dwFrame) {
    const S_LabelMeaning meaning = MeaningOf(label.strText, m_eForm);
    if (meaning.eKind != S_LabelMeaning::E_Kind::Event) return;
    ++m_expressed[{dwFrame, meaning.wMain, meaning.wSub}];
  }

  // Counts an event off, if a label of another maker says it.
  bool TakeExpressed(const S_NoteEvent& event) {
    const auto found = m_expressed.find({event.qwFrame, event.wMain, event.wSub});
    if (found == m_expressed.end() || found->second == 0) return false;
    --found->second;
    return true;
  }

  void AddEvents() {
    for (std::size_t i = 0; i < m_notes.events.size(); ++i) {
      const S_NoteEvent& event = m_notes.events[i];
      if (event.qwFrame > kMost) {
        m_written.lost.push_back(NameOf(event, i) + kTooFar);
        continue;
      }
      ReportParts(event, i);
      if (!TakeExpressed(event)) AddPoint(event.qwFrame, OwnEventLabel(event, m_eForm));
    }
  }

  void ReportParts(const S_NoteEvent& event, std::size_t nIndex) {
    const bool bData = m_eForm == E_RiffForm::Wave && event.dwData != 0;
    const bool bDescription = !event.strDescription.empty();
    if (!bData && !bDescription) return;
    m_written.lost.push_back(NameOf(event, nIndex) + ": " + (bData ? "its data" : "") +
                             (bData && bDescription ? " and " : "") +
                             (bDescription ? "its description" : ""));
  }

  void AddRanges(const std::vector<S_NoteRange>& ranges, const char* pszKind, const char* pszKinds,
                 const char* pszLabel) {
    for (std::size_t i = 0; i < ranges.size(); ++i) {
      const S_NoteRange& range = ranges[i];
      if (m_eForm == E_RiffForm::Vef) {
        m_written.lost.push_back(NameOf(pszKind, range, i) + ": a VEF file holds no " + pszKinds);
      } else if (range.qwFirst > kMost || range.qwCount > kMost) {
        m_written.lost.push_back(NameOf(pszKind, range, i) + kTooFar);
      } else {
        S_NoteRegionText length;
        length.dwCueID = AddPoint(range.qwFirst, pszLabel);
        length.dwCount = static_cast<std::uint32_t>(range.qwCount);
        m_lengths.push_back(std::move(length));
      }
    }
  }

  std::uint32_t AddPoint(std::uint64_t qwFrame, std::string strLabel) {
    S_NoteCue cue;
    cue.dwID = m_freeIDs.Next();
    cue.dwPosition = static_cast<std::uint32_t>(qwFrame);
    cue.dwSampleOffset = cue.dwPosition;
    m_written.cues.push_back(cue);
    m_ownLabels.push_back({cue.dwID, std::move(strLabel)});
    return cue.dwID;
  }

  void WriteList() {
    for (const S_NoteRegionText& text : m_notes.texts) m_written.list.Text(text);
    for (const S_NoteRegionText& length : m_lengths) m_written.list.Text(length);
    for (const S_NoteLabel* pLabel : m_labels) m_written.list.Label(*pLabel);
    for (const S_OwnLabel& label : m_ownLabels) {
      m_written.list.OwnLabel(label.dwCueID, label.strText);
    }
  }

  const S_Notes& m_notes;
  E_RiffForm m_eForm;
  cuedevents::C_ByID m_positions;  // of other makers' cue points
  C_FreeIDs m_freeIDs;
  std::map<C_EventKey, std::size_t> m_expressed;  // how often other makers' labels say an event
  std::vector<const S_NoteLabel*> m_labels;
  std::vector<S_OwnLabel> m_ownLabels;
  std::vector<S_NoteRegionText> m_lengths;
  S_WrittenMarks m_written;
};

}  // namespace

S_WrittenMarks WriteMarks(const S_Notes& notes, E_RiffForm eForm) {
  return C_MarkWriter(notes, eForm).Write();
}

}  // namespace api
