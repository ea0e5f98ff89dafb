// SPDX-License-Identifier: Apache-2.0
#include "marks/LabelText.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/LabelMeaning.h"
#include "marks/MarkNotes.h"

namespace tool {
namespace {

struct S_Line {
  std::uint64_t qwStart = 0;
  std::uint64_t qwEnd = 0;
  std::string strText;
};

// With as many digits as tell frames apart.
std::string SecondsText(std::uint64_t qwFrame, std::uint32_t dwRate) {
  const bool bFine = dwRate > 400000;
  const std::uint64_t qwUnits = bFine ? 1000000000 : 1000000;
  if (dwRate == 0) return "0.000000";
  const std::uint64_t qwRest = (qwFrame % dwRate * qwUnits + dwRate / 2) / dwRate;
  const std::uint64_t qwSeconds = qwFrame / dwRate + qwRest / qwUnits;
  const std::string strRest = std::to_string(qwUnits + qwRest % qwUnits);
  return std::to_string(qwSeconds) + '.' + strRest.substr(1);
}

bool IsLabl(const voxplay::Label& label) {
  return std::string_view(label.type, sizeof label.type) == "labl";
}

// Whether a text says a length and no more.
bool IsBare(const voxplay::RegionText& text) {
  return text.count != 0 && *text.text == '\0' &&
         std::string_view(text.purpose, sizeof text.purpose) == "rgn " && text.country == 0 &&
         text.language == 0 && text.dialect == 0 && text.code_page == 0;
}

class C_LabelWriter {
 public:
  explicit C_LabelWriter(const voxplay::NotesView& notes) : m_notes(notes) {
    for (const voxplay::Label label : notes.labels()) m_labels[label.cue_id].push_back(label);
    for (const voxplay::RegionText text : notes.region_texts()) {
      m_texts[text.cue_id].push_back(text);
    }
  }

  std::vector<S_Line> Lines() {
    for (const voxplay::Event event : m_notes.events()) AddEvent(event);
    for (const voxplay::Range range : m_notes.silence()) AddRange("silence", range);
    for (const voxplay::Range range : m_notes.regions()) AddRange("region", range);
    for (const voxplay::Loop loop : m_notes.loops()) {
      const std::uint64_t qwLast = std::max(loop.first, loop.last);
      Add(loop.first, qwLast + 1, LabelTag("loop", {loop.type, loop.play_count}));
    }
    for (const voxplay::Cue cue : m_notes.cues()) AddCue(cue);
    std::ranges::stable_sort(m_lines, {}, &S_Line::qwStart);
    return std::move(m_lines);
  }

 private:
  void Add(std::uint64_t qwStart, std::uint64_t qwEnd, std::string strText) {
    m_lines.push_back({qwStart, std::max(qwStart, qwEnd), std::move(strText)});
  }
  void AddEvent(const voxplay::Event& event) {
    std::string strText =
        event.data == 0 ? LabelTag("event", {event.main_command, event.sub_command})
                        : LabelTag("event", {event.main_command, event.sub_command, event.data});
    if (*event.description != '\0') strText += ' ' + LabelLineText(event.description);
    Add(event.frame, event.frame, std::move(strText));
  }
  void AddRange(const char* pszKind, const voxplay::Range& range) {
    Add(range.first, range.first + range.count, LabelTag(pszKind));
  }

  // The line of a cue point has its first label and its first bare text. What else belongs to it
  // follows. A cue point of an id that was there before has nothing of its own.
  void AddCue(const voxplay::Cue& cue) {
    std::vector<voxplay::Label> labels = std::exchange(m_labels[cue.id], {});
    std::vector<voxplay::RegionText> texts = std::exchange(m_texts[cue.id], {});
    const auto label = std::ranges::find_if(labels, &IsLabl);
    const auto text = std::ranges::find_if(texts, &IsBare);
    const std::uint64_t qwLength = text == texts.end() ? 0 : text->count;
    Add(cue.position, cue.position + qwLength,
        label == labels.end() ? "" : LabelLineText(label->text));
    if (label != labels.end()) labels.erase(label);
    if (text != texts.end()) texts.erase(text);
    for (const voxplay::Label& other : labels) AddOther(cue, other);
    for (const voxplay::RegionText& other : texts) {
      Add(cue.position, std::uint64_t{cue.position} + other.count,
          LabelTag("text") + ' ' + LabelLineText(other.text));
    }
  }
  void AddOther(const voxplay::Cue& cue, const voxplay::Label& label) {
    const std::string strTag = IsLabl(label) ? "" : LabelTag("note") + ' ';
    Add(cue.position, cue.position, strTag + LabelLineText(label.text));
  }

  voxplay::NotesView m_notes;
  std::map<std::uint32_t, std::vector<voxplay::Label>> m_labels;
  std::map<std::uint32_t, std::vector<voxplay::RegionText>> m_texts;
  std::vector<S_Line> m_lines;
};

class C_LabelReader {
 public:
  explicit C_LabelReader(std::uint32_t dwRate) : m_dwRate(dwRate) {}

  void ReadLine(std::string_view line) {
    ++m_nLine;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('\\')) return;
    S_Line read;
    read.qwStart = TakeFrame(line);
    read.qwEnd = TakeFrame(line);
    if (read.qwEnd < read.qwStart) Refuse("it ends before it starts");
    read.strText = line;
    Take(read);
  }
  C_Json Rows() { return std::move(m_rows); }

 private:
  [[noreturn]] void Refuse(const std::string& strWhy) const {
    throw C_BadRow("line " + std::to_string(m_nLine) + ": " + strWhy);
  }
  // The seconds up to the next tab.
  std::uint64_t TakeFrame(std::string_view& line) const {
    const std::size_t nTab = std::min(line.find('\t'), line.size());
    const std::string_view field = line.substr(0, nTab);
    line.remove_prefix(std::min(nTab + 1, line.size()));
    const auto time = C_Time::Parse(field);
    if (!time) Refuse("\"" + Printable(field.substr(0, 40)) + "\" is not a time");
    return time->FrameAt(m_dwRate);
  }

  void Take(const S_Line& line) {
    const S_LabelMeaning meaning = MeaningOfLabel(line.strText);
    if (meaning.strKind == "cue") return TakeCue(line, meaning);
    if (meaning.strKind == "note" || meaning.strKind == "text") return TakeFurther(line, meaning);
    C_Json& row = Add(meaning.strKind, line);
    if (meaning.strKind == "event") {
      row["main_command"] = meaning.numbers[0];
      row["sub_command"] = meaning.numbers[1];
      row["data"] = meaning.numbers[2];
      row["name"] = meaning.strText;
    } else if (meaning.strKind == "loop") {
      row["type"] = meaning.numbers[0];
      row["play_count"] = meaning.numbers[1];
    }
  }
  C_Json& Add(const std::string& strKind, const S_Line& line) {
    m_rows.push_back({{"kind", strKind}, {"start", line.qwStart}});
    if (line.qwEnd != line.qwStart) m_rows.back()["length"] = line.qwEnd - line.qwStart;
    return m_rows.back();
  }

  void TakeCue(const S_Line& line, const S_LabelMeaning& meaning) {
    AddCue(line);
    if (meaning.bHasText) AddOfCue("label", "name", meaning.strText);
    if (line.qwEnd == line.qwStart) return;
    AddOfCue("text", "text", "")["length"] = line.qwEnd - line.qwStart;
  }
  // One without the line of a cue point gets one of its own.
  void TakeFurther(const S_Line& line, const S_LabelMeaning& meaning) {
    if (m_qwCue != line.qwStart) AddCue(line);
    C_Json& row = AddOfCue(meaning.strKind.c_str(), "text", meaning.strText);
    if (line.qwEnd != line.qwStart) row["length"] = line.qwEnd - line.qwStart;
  }
  void AddCue(const S_Line& line) {
    m_qwCue = line.qwStart;
    m_rows.push_back({{"kind", "cue"}, {"id", ++m_dwID}, {"start", line.qwStart}});
  }
  C_Json& AddOfCue(const char* pszKind, const char* pszKey, const std::string& strText) {
    m_rows.push_back({{"kind", pszKind}, {"id", m_dwID}, {pszKey, strText}});
    return m_rows.back();
  }

  std::uint32_t m_dwRate;
  std::size_t m_nLine = 0;
  std::uint32_t m_dwID = 0;
  std::optional<std::uint64_t> m_qwCue;  // where the last cue point is
  C_Json m_rows = C_Json::array();
};

}  // namespace

std::string LabelTextOf(const voxplay::NotesView& notes, std::uint32_t dwRate) {
  std::string strText;
  for (const S_Line& line : C_LabelWriter(notes).Lines()) {
    strText += SecondsText(line.qwStart, dwRate) + '\t' + SecondsText(line.qwEnd, dwRate) + '\t' +
               line.strText + '\n';
  }
  return strText;
}

C_Json RowsOfLabelText(std::string_view text, std::uint32_t dwRate) {
  C_LabelReader reader(dwRate);
  while (!text.empty()) {
    const std::size_t nEnd = std::min(text.find('\n'), text.size());
    reader.ReadLine(text.substr(0, nEnd));
    text.remove_prefix(std::min(nEnd + 1, text.size()));
  }
  return reader.Rows();
}

}  // namespace tool
