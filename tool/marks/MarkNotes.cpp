// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkNotes.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/Interrupt.h"
#include "marks/BeyondEnd.h"
#include "marks/RowValues.h"
#include "sound/CueFrame.h"

namespace tool {
namespace {

// Of all marks that are stored with cue points.
constexpr std::uint64_t kMostFrame = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kMostLength = kMostFrame + 1;  // from the first frame to the last

std::uint32_t Narrow(std::uint64_t qwChecked) { return static_cast<std::uint32_t>(qwChecked); }

// Which ids cue points have, and which they get.
class C_CueIDs {
 public:
  explicit C_CueIDs(const voxplay::NotesView& notes) {
    for (const voxplay::Cue cue : notes.cues()) m_present.insert(cue.id);
    m_used = m_present;
    for (const voxplay::Label label : notes.labels()) m_used.insert(label.cue_id);
    for (const voxplay::RegionText text : notes.region_texts()) m_used.insert(text.cue_id);
  }

  void Use(std::uint32_t dwID) { m_used.insert(dwID); }
  // After all that are used.
  std::uint32_t Free() {
    while (!m_used.insert(m_dwNext).second) ++m_dwNext;
    return m_dwNext;
  }
  // A row has a cue point of this id.
  void Rename(std::uint32_t dwID) {
    if (m_present.contains(dwID) && !m_renamed.contains(dwID)) m_renamed.emplace(dwID, Free());
  }
  [[nodiscard]] std::uint32_t Of(std::uint32_t dwID) const {
    const auto found = m_renamed.find(dwID);
    return found == m_renamed.end() ? dwID : found->second;
  }

 private:
  std::unordered_set<std::uint32_t> m_present;
  std::unordered_set<std::uint32_t> m_used;
  std::unordered_map<std::uint32_t, std::uint32_t> m_renamed;
  std::uint32_t m_dwNext = 1;
};

class C_RowAdder {
 public:
  C_RowAdder(const PFN_Rows& fnRows, const S_SoundEnd& end, voxplay::Notes& notes)
      : m_fnRows(fnRows), m_end(end), m_notes(notes), m_ids(notes) {}

  std::size_t AddAll() {
    std::vector<std::uint32_t> cues;
    std::size_t nRows = 0;
    ForEach([&](const C_RowValues& row) {
      ++nRows;
      if (row.IsEmpty("id")) return;
      const auto dwID = row.Number<std::uint32_t>("id");
      m_ids.Use(dwID);
      if (Kind(row) == "cue") cues.push_back(dwID);
    });
    // Only now is it known which ids are free.
    for (const std::uint32_t dwID : cues) m_ids.Rename(dwID);
    ForEach([this](const C_RowValues& row) { Add(row); });
    return nRows;
  }

 private:
  template <typename Work>
  void ForEach(Work&& work) {
    m_fnRows([&](const C_Json& row, const std::string& strPlace) {
      ThrowIfInterrupted();
      work(C_RowValues(row, strPlace, m_end.dwRate));
    });
  }
  static std::string Kind(const C_RowValues& row) { return row.Word("kind"); }

  void Add(const C_RowValues& row) {
    const std::string strKind = Kind(row);
    if (strKind == "event") return AddEvent(row);
    if (strKind == "cue") return AddCuePoint(row);
    if (strKind == "label") return AddLabel(CueOf(row), "labl", row.Text("name"));
    if (strKind == "note") return AddLabel(CueOf(row), "note", row.Text("text"));
    if (strKind == "text") return AddText(CueOf(row), row);
    if (strKind == "silence") return m_notes.add_silence(Range(row));
    if (strKind == "region") return m_notes.add_region(Range(row));
    if (strKind == "loop") return AddLoop(row);
    row.Refuse("kind: \"" + strKind +
               "\" is none of event, cue, label, note, text, silence, region and loop");
  }

  static std::uint64_t Start(const C_RowValues& row, std::uint64_t qwMost = kMostFrame) {
    if (row.IsEmpty("start") && row.IsEmpty("time")) row.Refuse("it has neither start nor time");
    return row.Frames("start", "time", qwMost);
  }
  static std::uint64_t Length(const C_RowValues& row, std::uint64_t qwMost = kMostFrame) {
    return row.Frames("length", "duration", qwMost);
  }

  void CheckPlace(const C_RowValues& row, std::uint64_t qwStart, std::uint64_t qwLength) const {
    const auto strWhyNot = BeyondEnd(qwStart, qwLength, m_end);
    if (strWhyNot) row.Refuse(*strWhyNot);
  }

  void AddEvent(const C_RowValues& row) {
    const std::string strName = row.Text("name");
    voxplay::Event event{};
    event.frame = Start(row, std::numeric_limits<std::uint64_t>::max());
    event.main_command = row.Number<std::uint16_t>("main_command");
    event.sub_command = row.Number<std::uint16_t>("sub_command");
    event.data = row.Number<std::uint32_t>("data");
    event.description = strName.c_str();
    CheckPlace(row, event.frame, 0);
    m_notes.add(event);
  }

  // The id of the cue point that a row belongs to.
  std::uint32_t CueOf(const C_RowValues& row) {
    if (!row.IsEmpty("id")) return m_ids.Of(row.Number<std::uint32_t>("id"));
    return AddCue(row);
  }
  static std::uint32_t OwnOr(const C_RowValues& row, const char* pszKey, std::uint32_t dwFrame) {
    return row.IsEmpty(pszKey) ? dwFrame : row.Number<std::uint32_t>(pszKey);
  }
  std::uint32_t AddCue(const C_RowValues& row) {
    voxplay::Cue cue{};
    cue.id = row.IsEmpty("id") ? m_ids.Free() : m_ids.Of(row.Number<std::uint32_t>("id"));
    const std::uint32_t dwFrame = Narrow(Start(row));
    std::ranges::copy(row.ID("chunk", {'d', 'a', 't', 'a'}), cue.chunk);
    cue.chunk_start = row.Number<std::uint32_t>("chunk_start");
    cue.block_start = row.Number<std::uint32_t>("block_start");
    cue.position = OwnOr(row, "position", dwFrame);
    cue.sample_offset = OwnOr(row, "sample_offset", dwFrame);
    if (FrameOf(cue) != dwFrame) {
      row.Refuse("start is " + std::to_string(dwFrame) +
                 ", but position and sample_offset make it " + std::to_string(FrameOf(cue)) +
                 "; leave these empty if start is meant");
    }
    CheckPlace(row, dwFrame, 0);
    if (m_end.qwFrames != UINT64_MAX) m_starts.try_emplace(cue.id, dwFrame);
    m_notes.add(cue);
    return cue.id;
  }
  void AddCuePoint(const C_RowValues& row) {
    const std::uint32_t dwID = AddCue(row);
    if (!row.IsEmpty("name")) AddLabel(dwID, "labl", row.Text("name"));
    if (!row.IsEmpty("text")) AddLabel(dwID, "note", row.Text("text"));
    if (Length(row) == 0) return;
    voxplay::RegionText text{};
    text.cue_id = dwID;
    CheckLength(row, dwID);
    text.count = Narrow(Length(row));
    std::ranges::copy(std::string_view("rgn "), text.purpose);
    text.text = "";
    m_notes.add(text);
  }
  void AddLabel(std::uint32_t dwID, std::string_view type, const std::string& strText) {
    voxplay::Label label{};
    label.cue_id = dwID;
    std::ranges::copy(type, label.type);
    label.text = strText.c_str();
    m_notes.add(label);
  }
  // From its cue point on, if a row had that.
  void CheckLength(const C_RowValues& row, std::uint32_t dwID) const {
    const auto start = m_starts.find(dwID);
    if (start != m_starts.end()) CheckPlace(row, start->second, Length(row));
  }
  void AddText(std::uint32_t dwID, const C_RowValues& row) {
    const std::string strText = row.Text("text");
    CheckLength(row, dwID);
    voxplay::RegionText text{};
    text.cue_id = dwID;
    text.count = Narrow(Length(row));
    std::ranges::copy(row.ID("purpose", {'r', 'g', 'n', ' '}), text.purpose);
    text.country = row.Number<std::uint16_t>("country");
    text.language = row.Number<std::uint16_t>("language");
    text.dialect = row.Number<std::uint16_t>("dialect");
    text.code_page = row.Number<std::uint16_t>("code_page");
    text.text = strText.c_str();
    m_notes.add(text);
  }

  [[nodiscard]] voxplay::Range Range(const C_RowValues& row) const {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    const voxplay::Range range{Start(row, kMost), Length(row, kMost)};
    CheckPlace(row, range.first, range.count);
    return range;
  }

  void AddLoop(const C_RowValues& row) {
    voxplay::Loop loop{};
    loop.id = row.Number<std::uint32_t>("id");
    loop.type = row.Number<std::uint32_t>("type");
    loop.first = Narrow(Start(row));
    loop.last = Last(row);
    if (loop.last >= loop.first) {
      CheckPlace(row, loop.first, std::uint64_t{loop.last} - loop.first + 1);
    }
    loop.fraction = row.Number<std::uint32_t>("fraction");
    loop.play_count = row.Number<std::uint32_t>("play_count");
    m_notes.add(loop);
  }
  static std::uint32_t Last(const C_RowValues& row) {
    if (!row.IsEmpty("last")) return row.Number<std::uint32_t>("last");
    const std::uint64_t qwLength = Length(row, kMostLength);
    if (qwLength == 0) row.Refuse("a loop needs a length");
    const std::uint64_t qwLast = Start(row) + qwLength - 1;
    if (qwLast > kMostFrame) row.Refuse("the loop ends beyond frame " + std::to_string(kMostFrame));
    return Narrow(qwLast);
  }

  const PFN_Rows& m_fnRows;
  S_SoundEnd m_end;
  voxplay::Notes& m_notes;
  C_CueIDs m_ids;
  std::unordered_map<std::uint32_t, std::uint32_t> m_starts;  // of cue points of rows
};

}  // namespace

std::size_t AddRows(const PFN_Rows& fnRows, std::uint32_t dwRate, voxplay::Notes& notes,
                    std::uint64_t qwEnd) {
  return C_RowAdder(fnRows, {qwEnd, dwRate}, notes).AddAll();
}

PFN_Rows RowsIn(const C_Json& array) {
  return [&array](const PFN_Row& fnRow) {
    std::size_t nRow = 0;
    for (const C_Json& row : array) fnRow(row, "row " + std::to_string(++nRow));
  };
}

}  // namespace tool
