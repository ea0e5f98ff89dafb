// SPDX-License-Identifier: Apache-2.0
#include "notes/MarkWriting.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "file/CuedEvents.h"
#include "file/WavLabels.h"
#include "notes/CueIDs.h"
#include "notes/FourCC.h"
#include "notes/LabelForms.h"
#include "notes/LostNotes.h"
#include "notes/SpokenEvents.h"

namespace api {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
constexpr const char* kTooFar = ": cue points hold no frame or length beyond 32 bits";

// VEMD files have the form of WAV files, and are called so in such sentences.
const char* FileOf(E_RiffForm eForm) { return eForm == E_RiffForm::Vef ? "VEF" : "WAV"; }

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
        m_freeIDs(IDsOfOthers(notes)),
        m_spoken(notes.events, eForm) {}

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
  struct S_OwnLabel {
    std::uint32_t dwCueID;
    std::string strText;
    std::size_t nBefore;  // the label of another maker that it stands before; all when too large
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
      if (dwFrame && label.type == FourCC("labl") && !IsUnderstood(label, *dwFrame)) {
        lost.push_back(NameOf(label, i) + ": readers take it for an event");
      }
      m_labels.push_back(&label);
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

  // False for the label of an event that there is not.
  bool IsUnderstood(const S_NoteLabel& label, std::uint32_t dwFrame) {
    const S_LabelMeaning meaning = MeaningOf(label.strText, m_eForm);
    return meaning.eKind != S_LabelMeaning::E_Kind::Event ||
           m_spoken.Take(m_labels.size(), dwFrame, meaning);
  }

  void AddEvents() {
    const std::vector<std::size_t> places = Places();
    for (std::size_t i = 0; i < m_notes.events.size(); ++i) {
      const S_NoteEvent& event = m_notes.events[i];
      if (event.qwFrame > kMost) {
        m_written.lost.push_back(NameOf(event, i) + kTooFar);
        continue;
      }
      ReportParts(event, i);
      if (!m_spoken.LabelOf(i)) {
        AddPoint(event.qwFrame, OwnEventLabel(event, m_eForm), places[i]);
      } else if (m_spoken.IsMisplaced(i)) {
        m_written.lost.push_back(NameOf(event, i) +
                                 ": it comes at another place among those of its frame");
      }
    }
  }

  // Before which label of another maker that of an event has to stand: the next one that says an
  // event of the same frame, because readers keep the order of the labels.
  [[nodiscard]] std::vector<std::size_t> Places() const {
    const std::vector<S_NoteEvent>& events = m_notes.events;
    std::vector<std::size_t> places(events.size(), m_labels.size());
    for (std::size_t i = events.size(); i-- > 0;) {
      if (i + 1 < events.size() && events[i].qwFrame == events[i + 1].qwFrame) {
        places[i] = places[i + 1];
      }
      const std::optional<std::size_t> nLabel = m_spoken.LabelOf(i);
      if (nLabel && !m_spoken.IsMisplaced(i)) places[i] = *nLabel;
    }
    return places;
  }

  void ReportParts(const S_NoteEvent& event, std::size_t nIndex) {
    const bool bData = m_eForm == E_RiffForm::Wave && event.dwData != 0;
    const bool bDescription = !event.strDescription.empty();
    if (!bData && !bDescription) return;
    const bool bBoth = bData && bDescription;
    m_written.lost.push_back(NameOf(event, nIndex) + ": " + (bData ? "its data" : "") +
                             (bBoth ? " and " : "") + (bDescription ? "its description" : "") +
                             (bBoth ? " are" : " is") + " not kept: a " + FileOf(m_eForm) +
                             " file holds none");
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
        length.dwCueID = AddPoint(range.qwFirst, pszLabel, m_labels.size());
        length.dwCount = static_cast<std::uint32_t>(range.qwCount);
        m_lengths.push_back(std::move(length));
      }
    }
  }

  std::uint32_t AddPoint(std::uint64_t qwFrame, std::string strLabel, std::size_t nBefore) {
    S_NoteCue cue;
    cue.dwID = m_freeIDs.Next();
    cue.dwPosition = static_cast<std::uint32_t>(qwFrame);
    cue.dwSampleOffset = cue.dwPosition;
    m_written.cues.push_back(cue);
    m_ownLabels.push_back({cue.dwID, std::move(strLabel), nBefore});
    return cue.dwID;
  }

  void WriteList() {
    for (const S_NoteRegionText& text : m_notes.texts) m_written.list.Text(text);
    for (const S_NoteRegionText& length : m_lengths) m_written.list.Text(length);
    std::ranges::stable_sort(m_ownLabels, {}, &S_OwnLabel::nBefore);
    std::size_t nOwn = 0;
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
      WriteOwnLabels(nOwn, i);
      m_written.list.Label(*m_labels[i]);
    }
    WriteOwnLabels(nOwn, m_labels.size());
  }
  void WriteOwnLabels(std::size_t& nOwn, std::size_t nBefore) {
    for (; nOwn < m_ownLabels.size() && m_ownLabels[nOwn].nBefore <= nBefore; ++nOwn) {
      m_written.list.OwnLabel(m_ownLabels[nOwn].dwCueID, m_ownLabels[nOwn].strText);
    }
  }

  const S_Notes& m_notes;
  E_RiffForm m_eForm;
  cuedevents::C_ByID m_positions;  // of other makers' cue points
  C_FreeIDs m_freeIDs;
  C_SpokenEvents m_spoken;  // by other makers' labels
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
