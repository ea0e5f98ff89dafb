// SPDX-License-Identifier: Apache-2.0
#include "notes/MarkMeanings.h"

#include <optional>
#include <utility>
#include <vector>

#include "file/CuedEvents.h"
#include "notes/CueIDs.h"
#include "notes/FourCC.h"
#include "notes/LabelForms.h"
#include "notes/NoteEdits.h"

namespace api {
namespace {

using E_Kind = S_LabelMeaning::E_Kind;

// The index of the first item with each identifier.
template <typename Item, typename IDOf>
cuedevents::C_ByID FirstByID(std::span<const Item> items, IDOf fnID) {
  cuedevents::C_ByID firsts;
  for (std::size_t i = 0; i < items.size(); ++i) {
    firsts.Add(fnID(items[i]), static_cast<std::uint32_t>(i));
  }
  firsts.Sort();
  return firsts;
}

// Whether a text says no more than the length of a range.
bool IsBareLength(const S_NoteRegionText& text) {
  S_NoteRegionText bare;
  bare.dwCueID = text.dwCueID;
  bare.dwCount = text.dwCount;
  return text == bare;
}

class C_MarkReader {
 public:
  C_MarkReader(std::span<const S_NoteCue> cues, const S_LabelList& list, E_RiffForm eForm,
               bool bCutShort, S_Notes& notes)
      : m_cues(cues),
        m_list(list),
        m_eForm(eForm),
        m_bCutShort(bCutShort),
        m_notes(notes),
        m_firstCues(FirstByID(cues, [](const S_NoteCue& cue) { return cue.dwID; })),
        m_firstTexts(
            FirstByID(std::span(list.texts), [](const auto& text) { return text.dwCueID; })) {}

  void Read() {
    for (const S_NoteLabel& label : m_list.labels) ReadLabel(label);
    KeepTexts();
    KeepCues();
    PutInOrder(m_notes);
  }

 private:
  void ReadLabel(const S_NoteLabel& label) {
    if (!IsOwn(label)) {
      m_notes.labels.push_back(label);
      m_othersIDs.push_back(label.dwCueID);
    } else {
      m_ownIDs.push_back(label.dwCueID);
      if (IsRangeLabel(label.strText)) m_rangeIDs.push_back(label.dwCueID);
    }
    const std::optional<unsigned int> dwCue = m_firstCues.Find(label.dwCueID);
    if (dwCue && label.type == FourCC("labl")) Place(label, m_cues[*dwCue].dwPosition);
  }

  [[nodiscard]] bool IsOwn(const S_NoteLabel& label) const {
    if (label.type != FourCC("labl") || !IsOwnLabel(label.strText, m_eForm)) return false;
    return m_bCutShort || m_firstCues.Find(label.dwCueID).has_value();
  }

  void Place(const S_NoteLabel& label, std::uint32_t dwFrame) {
    const S_LabelMeaning meaning = MeaningOf(label.strText, m_eForm);
    switch (meaning.eKind) {
      case E_Kind::Event:
        m_notes.events.push_back({dwFrame, meaning.wMain, meaning.wSub, meaning.dwData, {}});
        break;
      case E_Kind::Silence:
        m_notes.silence.push_back({dwFrame, LengthOf(label.dwCueID)});
        break;
      case E_Kind::Region:
        m_notes.regions.push_back({dwFrame, LengthOf(label.dwCueID)});
        break;
      case E_Kind::None:
        break;
    }
  }

  // A range without a text of its own has the length of the last one, as in the class library.
  [[nodiscard]] std::uint32_t LengthOf(std::uint32_t dwCueID) const {
    if (m_list.texts.empty()) return 0;
    const std::optional<unsigned int> dwText = m_firstTexts.Find(dwCueID);
    return dwText ? m_list.texts[*dwText].dwCount : m_list.texts.back().dwCount;
  }

  void KeepTexts() {
    const C_CueIDs ranges(std::move(m_rangeIDs));
    const C_CueIDs others(m_othersIDs);
    for (std::size_t i = 0; i < m_list.texts.size(); ++i) {
      const S_NoteRegionText& text = m_list.texts[i];
      const bool bOfRange = ranges.Has(text.dwCueID) && !others.Has(text.dwCueID) &&
                            m_firstTexts.Find(text.dwCueID) == i && IsBareLength(text);
      if (bOfRange) continue;
      m_notes.texts.push_back(text);
      m_othersIDs.push_back(text.dwCueID);
    }
  }

  void KeepCues() {
    const C_CueIDs own(std::move(m_ownIDs));
    const C_CueIDs others(std::move(m_othersIDs));
    for (std::size_t i = 0; i < m_cues.size(); ++i) {
      const std::uint32_t dwID = m_cues[i].dwID;
      if (own.Has(dwID) && !others.Has(dwID) && m_firstCues.Find(dwID) == i) continue;
      m_notes.cues.push_back(m_cues[i]);
    }
  }

  std::span<const S_NoteCue> m_cues;
  const S_LabelList& m_list;
  E_RiffForm m_eForm;
  bool m_bCutShort;
  S_Notes& m_notes;
  cuedevents::C_ByID m_firstCues;
  cuedevents::C_ByID m_firstTexts;
  std::vector<std::uint32_t> m_ownIDs;    // of the library's labels
  std::vector<std::uint32_t> m_rangeIDs;  // of those for silence and regions
  std::vector<std::uint32_t> m_othersIDs;
};

}  // namespace

void AddMarks(std::span<const S_NoteCue> cues, const S_LabelList& list, E_RiffForm eForm,
              bool bCutShort, S_Notes& notes) {
  C_MarkReader(cues, list, eForm, bCutShort, notes).Read();
}

}  // namespace api
