// SPDX-License-Identifier: Apache-2.0
#include "plot/Marks.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <unordered_map>

#include "picture/Lettering.h"
#include "sound/CueFrame.h"
#include "sound/SpokenEvents.h"

namespace tool {
namespace {

bool IsLabel(const voxplay::Label& label) { return std::memcmp(label.type, "labl", 4) == 0; }

// What events are called: by their description, by the label that says them, or by their commands.
class C_EventNames {
 public:
  C_EventNames(const voxplay::NotesView& notes, std::uint32_t dwContainer) : m_notes(notes) {
    for (const S_SpokenEvent& event : SpokenEvents(notes, dwContainer)) {
      m_labels.try_emplace(event.key, event.nLabel);
    }
  }
  [[nodiscard]] std::string Of(const voxplay::Event& event) const {
    if (*event.description != '\0') return CleanText(event.description);
    const auto label = m_labels.find(KeyOf(event));
    if (label != m_labels.end()) return CleanText(m_notes.labels()[label->second].text);
    return std::to_string(event.main_command) + "/" + std::to_string(event.sub_command);
  }

 private:
  voxplay::NotesView m_notes;
  std::map<S_EventKey, std::size_t> m_labels;
};

// How many ranges begin and end in each column, from which it follows where there are any.
class C_Coverage {
 public:
  explicit C_Coverage(int nColumns) : m_changes(static_cast<std::size_t>(nColumns) + 1) {}

  void Add(const S_Run& run) {
    m_changes[static_cast<std::size_t>(run.nFirst)] += 1;
    m_changes[static_cast<std::size_t>(run.nEnd)] -= 1;
  }
  [[nodiscard]] std::vector<S_Run> Runs() const {
    std::vector<S_Run> runs;
    std::int64_t nOpen = 0;
    for (std::size_t n = 0; n < m_changes.size(); ++n) {
      const bool bWasOpen = nOpen > 0;
      nOpen += m_changes[n];
      if (bWasOpen == (nOpen > 0)) continue;
      if (!bWasOpen) runs.push_back({static_cast<int>(n), 0});
      runs.back().nEnd = static_cast<int>(n);
    }
    return runs;
  }

 private:
  std::vector<std::int64_t> m_changes;
};

class C_Collector {
 public:
  C_Collector(const voxplay::NotesView& notes, std::uint32_t dwContainer, std::uint64_t qwFirst,
              const C_Columns& columns)
      : m_notes(notes), m_eventNames(notes, dwContainer), m_qwFirst(qwFirst), m_columns(columns) {}

  S_Marks Collect() {
    AddEvents();
    AddCues();
    m_result.ranges[RANGE_SILENCE] = Covered(m_notes.silence());
    m_result.ranges[RANGE_REGION] = Covered(m_notes.regions());
    AddLoops();
    AddTexts();
    for (auto& [nColumn, mark] : m_marks) m_result.marks.push_back(std::move(mark));
    return std::move(m_result);
  }

 private:
  [[nodiscard]] bool IsShown(std::uint64_t qwFrame) const {
    return qwFrame >= m_qwFirst && qwFrame - m_qwFirst <= m_columns.Frames();
  }

  void AddEvents() {
    for (const voxplay::Event event : m_notes.events()) {
      if (!IsShown(event.frame)) continue;
      ++m_result.counts[MARK_EVENT];
      const int nColumn = m_columns.ColumnOf(event.frame - m_qwFirst);
      if (m_marks.contains(nColumn)) continue;
      m_marks[nColumn] = {nColumn, event.frame, MARK_EVENT, m_eventNames.Of(event)};
    }
  }

  // Their names stand in labels, which may come in any order. Only those of cue points that are
  // drawn are looked up, and each name is known at the latest when all labels have been seen once.
  void AddCues() {
    std::unordered_map<std::uint32_t, int> columnsOf;
    for (const voxplay::Cue cue : m_notes.cues()) {
      if (!IsShown(FrameOf(cue))) continue;
      ++m_result.counts[MARK_CUE];
      const int nColumn = m_columns.ColumnOf(FrameOf(cue) - m_qwFirst);
      const auto [mark, bNew] = m_marks.try_emplace(nColumn);
      if (!bNew) continue;
      mark->second = {nColumn, FrameOf(cue), MARK_CUE, "#" + std::to_string(cue.id)};
      columnsOf.emplace(cue.id, nColumn);
    }
    NameCues(columnsOf);
  }
  void NameCues(const std::unordered_map<std::uint32_t, int>& columnsOf) {
    for (const voxplay::Label label : m_notes.labels()) {
      if (!IsLabel(label) || *label.text == '\0') continue;
      const auto found = columnsOf.find(label.cue_id);
      if (found != columnsOf.end()) m_marks[found->second].strName = CleanText(label.text);
    }
  }

  // The columns of frames, as far as they are in the picture.
  [[nodiscard]] std::optional<S_Run> RunOf(std::uint64_t qwBegin, std::uint64_t qwCount) const {
    const std::uint64_t qwSkipped = m_qwFirst > qwBegin ? m_qwFirst - qwBegin : 0;
    if (qwCount <= qwSkipped) return {};
    const std::uint64_t qwFrom = std::max(qwBegin, m_qwFirst) - m_qwFirst;
    if (qwFrom >= m_columns.Frames()) return {};
    const std::uint64_t qwMost = m_columns.Frames() - qwFrom;
    const std::uint64_t qwLast = qwFrom + std::min(qwCount - qwSkipped, qwMost) - 1;
    return S_Run{m_columns.ColumnOf(qwFrom), m_columns.ColumnOf(qwLast) + 1};
  }
  [[nodiscard]] std::vector<S_Run> Covered(const voxplay::Records<voxplay::Range>& ranges) const {
    C_Coverage coverage(m_columns.Count());
    for (const voxplay::Range range : ranges) {
      if (const auto run = RunOf(range.first, range.count)) coverage.Add(*run);
    }
    return coverage.Runs();
  }
  void AddLoops() {
    C_Coverage coverage(m_columns.Count());
    for (const voxplay::Loop loop : m_notes.loops()) {
      if (loop.last < loop.first) continue;
      const std::uint64_t qwCount = std::uint64_t{loop.last} - loop.first + 1;
      if (const auto run = RunOf(loop.first, qwCount)) coverage.Add(*run);
    }
    m_result.ranges[RANGE_LOOP] = coverage.Runs();
  }
  void AddTexts() {
    std::unordered_map<std::uint32_t, std::uint32_t> lengths;
    for (const voxplay::RegionText text : m_notes.region_texts()) {
      if (text.count > 0) lengths[text.cue_id] = text.count;
    }
    C_Coverage coverage(m_columns.Count());
    for (const voxplay::Cue cue : m_notes.cues()) {
      const auto found = lengths.find(cue.id);
      if (found == lengths.end()) continue;
      if (const auto run = RunOf(FrameOf(cue), found->second)) coverage.Add(*run);
    }
    m_result.ranges[RANGE_TEXT] = coverage.Runs();
  }

  voxplay::NotesView m_notes;
  C_EventNames m_eventNames;
  std::uint64_t m_qwFirst;
  C_Columns m_columns;
  std::map<int, S_Mark> m_marks;
  S_Marks m_result;
};

}  // namespace

S_Marks MarksOf(const voxplay::NotesView& notes, std::uint32_t dwContainer, std::uint64_t qwFirst,
                const C_Columns& columns) {
  return C_Collector(notes, dwContainer, qwFirst, columns).Collect();
}

}  // namespace tool
