// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkRows.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/FourCharacters.h"
#include "sound/CueFrame.h"

namespace tool {
namespace {

constexpr std::string_view kLabelType = "labl";

struct S_Kind {
  const char* pszName;
  voxplay_note_kind eList;
};
constexpr std::array kKinds = {
    S_Kind{"event", VOXPLAY_NOTE_EVENT},      S_Kind{"cue", VOXPLAY_NOTE_CUE},
    S_Kind{"label", VOXPLAY_NOTE_LABEL},      S_Kind{"note", VOXPLAY_NOTE_LABEL},
    S_Kind{"text", VOXPLAY_NOTE_REGION_TEXT}, S_Kind{"silence", VOXPLAY_NOTE_SILENCE},
    S_Kind{"region", VOXPLAY_NOTE_REGION},    S_Kind{"loop", VOXPLAY_NOTE_LOOP}};

bool IsLabel(const voxplay::Label& label) {
  return std::string_view(label.type, sizeof label.type) == kLabelType;
}

// A member that is not 0.
void Put(C_Json& row, const char* pszKey, std::uint64_t qwValue) {
  if (qwValue != 0) row[pszKey] = qwValue;
}

void PutText(C_Json& row, const char* pszKey, std::string_view text) {
  row[pszKey] = AsUtf8(text);
  if (!IsUtf8(text)) row["hex"] = HexText(text);
}

void PutID(C_Json& row, const char* pszKey, const char* pchID, std::string_view usual) {
  if (std::string_view(pchID, usual.size()) != usual) row[pszKey] = FourCharacters(pchID);
}

// In the order in which rows come.
constexpr std::array kLists = {VOXPLAY_NOTE_EVENT,       VOXPLAY_NOTE_CUE,     VOXPLAY_NOTE_LABEL,
                               VOXPLAY_NOTE_REGION_TEXT, VOXPLAY_NOTE_SILENCE, VOXPLAY_NOTE_REGION,
                               VOXPLAY_NOTE_LOOP};

C_Json NewRow(const char* pszKind, std::size_t nIndex) {
  C_Json row = C_Json::object();
  row["kind"] = pszKind;
  row["number"] = std::uint64_t{nIndex} + 1;
  return row;
}

}  // namespace

C_MarkRows::C_MarkRows(const voxplay::NotesView& notes, std::uint32_t dwRate)
    : m_notes(notes), m_dwRate(dwRate) {
  for (const auto eList : kLists) m_nCount += voxplay_notes_count(notes.get(), eList);
  for (const voxplay::Cue cue : notes.cues()) m_starts.try_emplace(cue.id, FrameOf(cue));
}

C_Json C_MarkRows::Row(std::size_t nRow) const {
  for (const auto eList : kLists) {
    const std::size_t nCount = voxplay_notes_count(m_notes.get(), eList);
    if (nRow < nCount) return RowOf(eList, nRow);
    nRow -= nCount;
  }
  return C_Json::object();
}

C_Json C_MarkRows::RowOf(voxplay_note_kind eList, std::size_t nIndex) const {
  const auto Filled = [&](const char* pszKind, const auto& record) {
    C_Json row = NewRow(pszKind, nIndex);
    Fill(row, record);
    return row;
  };
  switch (eList) {
    case VOXPLAY_NOTE_EVENT:
      return Filled("event", m_notes.events()[nIndex]);
    case VOXPLAY_NOTE_CUE:
      return Filled("cue", m_notes.cues()[nIndex]);
    case VOXPLAY_NOTE_LABEL: {
      const voxplay::Label label = m_notes.labels()[nIndex];
      return Filled(IsLabel(label) ? "label" : "note", label);
    }
    case VOXPLAY_NOTE_REGION_TEXT:
      return Filled("text", m_notes.region_texts()[nIndex]);
    case VOXPLAY_NOTE_SILENCE:
      return Filled("silence", m_notes.silence()[nIndex]);
    case VOXPLAY_NOTE_REGION:
      return Filled("region", m_notes.regions()[nIndex]);
    default:
      return Filled("loop", m_notes.loops()[nIndex]);
  }
}

void C_MarkRows::Place(C_Json& row, std::uint64_t qwStart, std::uint64_t qwLength) const {
  row["start"] = qwStart;
  if (m_dwRate != 0) row["time"] = SecondsOf(qwStart, m_dwRate);
  Put(row, "length", qwLength);
}

// What belongs to a cue point that does not exist has no place.
void C_MarkRows::PlaceAtCue(C_Json& row, std::uint32_t dwID, std::uint64_t qwLength) const {
  row["id"] = dwID;
  const auto start = m_starts.find(dwID);
  if (start != m_starts.end()) return Place(row, start->second, qwLength);
  Put(row, "length", qwLength);
}

void C_MarkRows::Fill(C_Json& row, const voxplay::Event& event) const {
  Place(row, event.frame);
  if (*event.description != '\0') PutText(row, "name", event.description);
  row["main_command"] = event.main_command;
  row["sub_command"] = event.sub_command;
  Put(row, "data", event.data);
}

void C_MarkRows::Fill(C_Json& row, const voxplay::Cue& cue) const {
  const std::uint32_t dwFrame = FrameOf(cue);
  row["id"] = cue.id;
  Place(row, dwFrame);
  PutID(row, "chunk", cue.chunk, "data");
  Put(row, "chunk_start", cue.chunk_start);
  Put(row, "block_start", cue.block_start);
  if (cue.position != dwFrame) row["position"] = cue.position;
  if (cue.sample_offset != dwFrame) row["sample_offset"] = cue.sample_offset;
}

void C_MarkRows::Fill(C_Json& row, const voxplay::Label& label) const {
  PlaceAtCue(row, label.cue_id);
  PutText(row, IsLabel(label) ? "name" : "text", label.text);
}

void C_MarkRows::Fill(C_Json& row, const voxplay::RegionText& text) const {
  PlaceAtCue(row, text.cue_id, text.count);
  PutText(row, "text", text.text);
  PutID(row, "purpose", text.purpose, "rgn ");
  Put(row, "country", text.country);
  Put(row, "language", text.language);
  Put(row, "dialect", text.dialect);
  Put(row, "code_page", text.code_page);
}

void C_MarkRows::Fill(C_Json& row, const voxplay::Range& range) const {
  Place(row, range.first, range.count);
}

void C_MarkRows::Fill(C_Json& row, const voxplay::Loop& loop) const {
  const bool bForward = loop.last >= loop.first;
  row["id"] = loop.id;
  Place(row, loop.first, bForward ? std::uint64_t{loop.last} - loop.first + 1 : 0);
  if (!bForward) row["last"] = loop.last;
  Put(row, "type", loop.type);
  Put(row, "fraction", loop.fraction);
  Put(row, "play_count", loop.play_count);
}

C_Json RowsOf(const voxplay::NotesView& notes, std::uint32_t dwRate) {
  C_Json rows = C_Json::array();
  C_MarkRows(notes, dwRate).ForEach([&](C_Json row) { rows.push_back(std::move(row)); });
  return rows;
}

std::optional<voxplay_note_kind> ListOfKind(const std::string& strKind) {
  const auto found =
      std::ranges::find_if(kKinds, [&](const S_Kind& kind) { return kind.pszName == strKind; });
  return found == kKinds.end() ? std::nullopt : std::optional(found->eList);
}

bool IsOfKind(const voxplay::NotesView& notes, const std::string& strKind, std::size_t nIndex) {
  if (ListOfKind(strKind) != VOXPLAY_NOTE_LABEL) return true;
  return IsLabel(notes.labels()[nIndex]) == (strKind == "label");
}

}  // namespace tool
