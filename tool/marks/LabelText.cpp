// SPDX-License-Identifier: Apache-2.0
#include "marks/LabelText.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/LabelMeaning.h"
#include "marks/MarkNotes.h"
#include "sound/CueFrame.h"

namespace tool {
namespace {

// What the text of a line is made of. A cue point without a label has no text.
enum class tagLineKind { EVENT, SILENCE, REGION, LOOP, NOTHING, LABEL, NOTE, TEXT };

// A line before its text is made: there may be many.
struct S_Line {
  std::uint64_t qwStart = 0;
  std::uint64_t qwEnd = 0;
  tagLineKind eKind = tagLineKind::NOTHING;
  std::size_t nIndex = 0;  // in the list of the notes that the kind is of
};

// With as many digits as tell frames apart.
std::string SecondsText(std::uint64_t qwFrame, std::uint32_t dwRate) {
  const bool bFine = dwRate > 400000;
  const std::uint64_t qwUnits = bFine ? 1000000000 : 1000000;
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

// Which labels or texts belong to which cue point.
class C_IndexByCue {
 public:
  template <typename Records>
  explicit C_IndexByCue(const Records& records) {
    m_entries.reserve(records.size());
    for (std::size_t n = 0; n < records.size(); ++n) m_entries.emplace_back(records[n].cue_id, n);
    std::ranges::sort(m_entries);
  }
  // Their indices, in their order.
  [[nodiscard]] std::vector<std::size_t> Of(std::uint32_t dwID) const {
    std::vector<std::size_t> indices;
    auto entry = std::ranges::lower_bound(m_entries, dwID, {}, &Entry::first);
    for (; entry != m_entries.end() && entry->first == dwID; ++entry) {
      indices.push_back(entry->second);
    }
    return indices;
  }

 private:
  using Entry = std::pair<std::uint32_t, std::size_t>;
  std::vector<Entry> m_entries;
};

class C_LabelWriter {
 public:
  explicit C_LabelWriter(const voxplay::NotesView& notes)
      : m_notes(notes), m_labels(notes.labels()), m_texts(notes.region_texts()) {
    const auto events = notes.events();
    for (std::size_t n = 0; n < events.size(); ++n) {
      Add(events[n].frame, events[n].frame, tagLineKind::EVENT, n);
    }
    AddRanges(notes.silence(), tagLineKind::SILENCE);
    AddRanges(notes.regions(), tagLineKind::REGION);
    const auto loops = notes.loops();
    for (std::size_t n = 0; n < loops.size(); ++n) {
      const voxplay::Loop loop = loops[n];
      const std::uint64_t qwLast = std::max(loop.first, loop.last);
      Add(loop.first, qwLast + 1, tagLineKind::LOOP, n);
    }
    for (const voxplay::Cue cue : notes.cues()) AddCue(cue);
    std::ranges::stable_sort(m_lines, {}, &S_Line::qwStart);
  }

  [[nodiscard]] const std::vector<S_Line>& Lines() const { return m_lines; }
  [[nodiscard]] std::string TextOf(const S_Line& line) const {
    switch (line.eKind) {
      case tagLineKind::EVENT:
        return EventText(m_notes.events()[line.nIndex]);
      case tagLineKind::SILENCE:
        return LabelTag("silence");
      case tagLineKind::REGION:
        return LabelTag("region");
      case tagLineKind::LOOP: {
        const voxplay::Loop loop = m_notes.loops()[line.nIndex];
        return LabelTag("loop", {loop.type, loop.play_count});
      }
      case tagLineKind::LABEL:
        return LabelLineText(m_notes.labels()[line.nIndex].text);
      case tagLineKind::NOTE:
        return LabelTag("note") + ' ' + LabelLineText(m_notes.labels()[line.nIndex].text);
      case tagLineKind::TEXT:
        return LabelTag("text") + ' ' + LabelLineText(m_notes.region_texts()[line.nIndex].text);
      default:
        return "";
    }
  }

 private:
  void Add(std::uint64_t qwStart, std::uint64_t qwEnd, tagLineKind eKind, std::size_t nIndex = 0) {
    m_lines.push_back({qwStart, std::max(qwStart, qwEnd), eKind, nIndex});
  }
  void AddRanges(const voxplay::Records<voxplay::Range>& ranges, tagLineKind eKind) {
    for (const voxplay::Range range : ranges) Add(range.first, range.first + range.count, eKind);
  }
  static std::string EventText(const voxplay::Event& event) {
    std::string strText =
        event.data == 0 ? LabelTag("event", {event.main_command, event.sub_command})
                        : LabelTag("event", {event.main_command, event.sub_command, event.data});
    if (*event.description != '\0') strText += ' ' + LabelLineText(event.description);
    return strText;
  }

  // The line of a cue point has its first label and its first bare text. What else belongs to it
  // follows. A cue point of an id that was there before has nothing of its own.
  void AddCue(const voxplay::Cue& cue) {
    const std::uint64_t qwFrame = FrameOf(cue);
    if (!m_seen.insert(cue.id).second) return Add(qwFrame, qwFrame, tagLineKind::NOTHING);
    std::vector<std::size_t> labels = m_labels.Of(cue.id);
    std::vector<std::size_t> texts = m_texts.Of(cue.id);
    const auto label =
        std::ranges::find_if(labels, [this](std::size_t n) { return IsLabl(m_notes.labels()[n]); });
    const auto text = std::ranges::find_if(
        texts, [this](std::size_t n) { return IsBare(m_notes.region_texts()[n]); });
    const std::uint64_t qwLength = text == texts.end() ? 0 : m_notes.region_texts()[*text].count;
    if (label == labels.end()) {
      Add(qwFrame, qwFrame + qwLength, tagLineKind::NOTHING);
    } else {
      Add(qwFrame, qwFrame + qwLength, tagLineKind::LABEL, *label);
      labels.erase(label);
    }
    if (text != texts.end()) texts.erase(text);
    AddFurther(qwFrame, labels, texts);
  }
  void AddFurther(std::uint64_t qwFrame, const std::vector<std::size_t>& labels,
                  const std::vector<std::size_t>& texts) {
    for (const std::size_t n : labels) {
      const bool bLabel = IsLabl(m_notes.labels()[n]);
      Add(qwFrame, qwFrame, bLabel ? tagLineKind::LABEL : tagLineKind::NOTE, n);
    }
    for (const std::size_t n : texts) {
      Add(qwFrame, qwFrame + m_notes.region_texts()[n].count, tagLineKind::TEXT, n);
    }
  }

  voxplay::NotesView m_notes;
  C_IndexByCue m_labels;
  C_IndexByCue m_texts;
  std::unordered_set<std::uint32_t> m_seen;
  std::vector<S_Line> m_lines;
};

class C_LabelReader {
 public:
  C_LabelReader(std::uint32_t dwRate, const PFN_Row& fnRow) : m_dwRate(dwRate), m_fnRow(fnRow) {}

  void ReadLine(std::string_view line) {
    m_strPlace = "line " + std::to_string(++m_nLine);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('\\')) return;
    S_Span span;
    span.qwStart = TakeFrame(line);
    span.qwEnd = TakeFrame(line);
    if (span.qwEnd < span.qwStart) Refuse("it ends before it starts");
    Take(span, MeaningOfLabel(line));
  }

 private:
  struct S_Span {
    std::uint64_t qwStart = 0;
    std::uint64_t qwEnd = 0;

    [[nodiscard]] std::uint64_t Length() const { return qwEnd - qwStart; }
  };

  [[noreturn]] void Refuse(const std::string& strWhy) const {
    throw C_BadRow(m_strPlace + ": " + strWhy);
  }
  // The seconds up to the next tab.
  std::uint64_t TakeFrame(std::string_view& line) const {
    const std::size_t nTab = std::min(line.find('\t'), line.size());
    const std::string_view field = line.substr(0, nTab);
    line.remove_prefix(std::min(nTab + 1, line.size()));
    const auto time = C_Time::Parse(field);
    if (!time) Refuse("\"" + Printable(field.substr(0, 40)) + "\" is not a time");
    if (m_dwRate == 0 && time->NeedsRate()) {
      Refuse("a time has no place in a sound without a sample rate");
    }
    return time->FrameAt(m_dwRate);
  }

  void Take(const S_Span& span, const S_LabelMeaning& meaning) {
    if (meaning.strKind == "cue") return TakeCue(span, meaning);
    if (meaning.strKind == "note" || meaning.strKind == "text") return TakeFurther(span, meaning);
    C_Json row = {{"kind", meaning.strKind}, {"start", span.qwStart}};
    if (span.Length() != 0) row["length"] = span.Length();
    if (meaning.strKind == "event") {
      row["main_command"] = meaning.numbers[0];
      row["sub_command"] = meaning.numbers[1];
      row["data"] = meaning.numbers[2];
      row["name"] = meaning.strText;
    } else if (meaning.strKind == "loop") {
      row["type"] = meaning.numbers[0];
      row["play_count"] = meaning.numbers[1];
    }
    HandOut(row);
  }

  void TakeCue(const S_Span& span, const S_LabelMeaning& meaning) {
    HandOutCue(span);
    if (meaning.bHasText) HandOut(RowOfCue("label", "name", meaning.strText));
    if (span.Length() == 0) return;
    C_Json text = RowOfCue("text", "text", "");
    text["length"] = span.Length();
    HandOut(text);
  }
  // One without the line of a cue point gets one of its own.
  void TakeFurther(const S_Span& span, const S_LabelMeaning& meaning) {
    if (m_qwCue != span.qwStart) HandOutCue(span);
    C_Json row = RowOfCue(meaning.strKind.c_str(), "text", meaning.strText);
    if (span.Length() != 0) row["length"] = span.Length();
    HandOut(row);
  }
  void HandOutCue(const S_Span& span) {
    m_qwCue = span.qwStart;
    HandOut({{"kind", "cue"}, {"id", ++m_dwID}, {"start", span.qwStart}});
  }
  [[nodiscard]] C_Json RowOfCue(const char* pszKind, const char* pszKey,
                                const std::string& strText) const {
    return {{"kind", pszKind}, {"id", m_dwID}, {pszKey, strText}};
  }
  void HandOut(const C_Json& row) const { m_fnRow(row, m_strPlace); }

  std::uint32_t m_dwRate;
  const PFN_Row& m_fnRow;
  std::size_t m_nLine = 0;
  std::string m_strPlace;
  std::uint32_t m_dwID = 0;
  std::optional<std::uint64_t> m_qwCue;  // where the last cue point is
};

}  // namespace

void WriteLabelText(const voxplay::NotesView& notes, std::uint32_t dwRate,
                    const std::function<void(std::string_view)>& fnWrite) {
  const C_LabelWriter writer(notes);
  for (const S_Line& line : writer.Lines()) {
    fnWrite(SecondsText(line.qwStart, dwRate) + '\t' + SecondsText(line.qwEnd, dwRate) + '\t' +
            writer.TextOf(line) + '\n');
  }
}

PFN_Rows RowsOfLabelText(std::string_view text, std::uint32_t dwRate) {
  return [text, dwRate](const PFN_Row& fnRow) {
    C_LabelReader reader(dwRate, fnRow);
    for (std::string_view rest = text; !rest.empty();) {
      const std::size_t nEnd = std::min(rest.find('\n'), rest.size());
      reader.ReadLine(rest.substr(0, nEnd));
      rest.remove_prefix(std::min(nEnd + 1, rest.size()));
    }
  };
}

}  // namespace tool
