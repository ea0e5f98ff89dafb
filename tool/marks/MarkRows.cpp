// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkRows.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/FourCharacters.h"

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

class C_RowMaker {
 public:
  C_RowMaker(const voxplay::NotesView& notes, std::uint32_t dwRate)
      : m_notes(notes), m_dwRate(dwRate) {
    for (const voxplay::Cue cue : notes.cues()) m_starts.try_emplace(cue.id, cue.position);
  }

  C_Json Rows() {
    for (const voxplay::Event event : m_notes.events()) AddEvent(event);
    for (const voxplay::Cue cue : m_notes.cues()) AddCue(cue);
    std::uint64_t qwNumber = 0;
    for (const voxplay::Label label : m_notes.labels()) AddLabel(label, ++qwNumber);
    for (const voxplay::RegionText text : m_notes.region_texts()) AddText(text);
    for (const voxplay::Range range : m_notes.silence()) AddRange("silence", range);
    for (const voxplay::Range range : m_notes.regions()) AddRange("region", range);
    for (const voxplay::Loop loop : m_notes.loops()) AddLoop(loop);
    return std::move(m_rows);
  }

 private:
  C_Json& Add(const char* pszKind) {
    const std::uint64_t qwNumber = ++m_numbers[pszKind];
    m_rows.push_back({{"kind", pszKind}, {"number", qwNumber}});
    return m_rows.back();
  }
  void Place(C_Json& row, std::uint64_t qwStart, std::uint64_t qwLength = 0) const {
    row["start"] = qwStart;
    row["time"] = SecondsOf(qwStart, m_dwRate);
    Put(row, "length", qwLength);
  }
  // What belongs to a cue point that does not exist has no place.
  C_Json& AddOfCue(const char* pszKind, std::uint32_t dwID, std::uint64_t qwLength = 0) {
    C_Json& row = Add(pszKind);
    row["id"] = dwID;
    if (const auto start = m_starts.find(dwID); start != m_starts.end()) {
      Place(row, start->second, qwLength);
    } else {
      Put(row, "length", qwLength);
    }
    return row;
  }

  void AddEvent(const voxplay::Event& event) {
    C_Json& row = Add("event");
    Place(row, event.frame);
    if (*event.description != '\0') PutText(row, "name", event.description);
    row["main_command"] = event.main_command;
    row["sub_command"] = event.sub_command;
    Put(row, "data", event.data);
  }
  void AddCue(const voxplay::Cue& cue) {
    C_Json& row = Add("cue");
    row["id"] = cue.id;
    Place(row, cue.position);
    PutID(row, "chunk", cue.chunk, "data");
    Put(row, "chunk_start", cue.chunk_start);
    Put(row, "block_start", cue.block_start);
    if (cue.sample_offset != cue.position) row["sample_offset"] = cue.sample_offset;
  }
  void AddLabel(const voxplay::Label& label, std::uint64_t qwNumber) {
    const bool bLabel = IsLabel(label);
    C_Json& row = AddOfCue(bLabel ? "label" : "note", label.cue_id);
    row["number"] = qwNumber;
    PutText(row, bLabel ? "name" : "text", label.text);
  }
  void AddText(const voxplay::RegionText& text) {
    C_Json& row = AddOfCue("text", text.cue_id, text.count);
    PutText(row, "text", text.text);
    PutID(row, "purpose", text.purpose, "rgn ");
    Put(row, "country", text.country);
    Put(row, "language", text.language);
    Put(row, "dialect", text.dialect);
    Put(row, "code_page", text.code_page);
  }
  void AddRange(const char* pszKind, const voxplay::Range& range) {
    Place(Add(pszKind), range.first, range.count);
  }
  void AddLoop(const voxplay::Loop& loop) {
    C_Json& row = Add("loop");
    row["id"] = loop.id;
    const bool bForward = loop.last >= loop.first;
    Place(row, loop.first, bForward ? std::uint64_t{loop.last} - loop.first + 1 : 0);
    if (!bForward) row["last"] = loop.last;
    Put(row, "type", loop.type);
    Put(row, "fraction", loop.fraction);
    Put(row, "play_count", loop.play_count);
  }

  voxplay::NotesView m_notes;
  std::uint32_t m_dwRate;
  std::unordered_map<std::uint32_t, std::uint32_t> m_starts;  // of the first cue point of each id
  std::unordered_map<std::string, std::uint64_t> m_numbers;
  C_Json m_rows = C_Json::array();
};

}  // namespace

C_Json RowsOf(const voxplay::NotesView& notes, std::uint32_t dwRate) {
  return C_RowMaker(notes, dwRate).Rows();
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
