// SPDX-License-Identifier: Apache-2.0
#include "tags/MarkExport.h"

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/JsonText.h"
#include "base/TextTable.h"
#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/LabelText.h"
#include "marks/MarkCsv.h"
#include "marks/MarkJson.h"
#include "marks/MarkTable.h"
#include "tags/LabelEvents.h"

namespace tool {
namespace {

using PFN_Write = std::function<void(std::string_view)>;

constexpr std::size_t kIndent = 2;

void WriteTable(const std::string& strPath, const C_MarkRows& rows, bool bColours,
                const PFN_Write& fnWrite) {
  const std::string strName = Bold(Printable(NameOf(strPath)), bColours);
  if (rows.Count() == 0) return fnWrite(strName + ": no marks\n");
  fnWrite(strName + ": " + CountedText(rows.Count(), "mark") + '\n');
  WriteMarkTable(rows, kIndent, bColours, fnWrite);
}

void WriteJson(const std::string& strPath, const S_SoundInfo& info, const C_MarkRows& rows,
               const PFN_Write& fnWrite) {
  C_Json file = {{"schema", kJsonSchema}, {"file", strPath}, {"sample_rate", info.dwRate}};
  if (info.qwFrames != kFramesUnknown) file["frames"] = info.qwFrames;
  WriteMarksJson(file, rows, fnWrite);
}

void WriteValues(const std::string& strPath, const C_MarkRows& rows, bool bSeveral,
                 const PFN_Write& fnWrite) {
  const C_MarkCsv table = bSeveral ? C_MarkCsv() : C_MarkCsv(rows);
  if (!bSeveral) fnWrite(table.Heading());
  rows.ForEach([&](const C_Json& row) { fnWrite(table.Line(row, strPath)); });
}

}  // namespace

void S_MarkView::Check() const {
  if (eForm != tagMarkForm::LABELS || !bSeveral) return;
  throw C_UsageFailure("--labels: a label track is of one file");
}

S_PrintRule S_MarkView::Rule() const {
  S_PrintRule rule = eForm == tagMarkForm::JSON ? JsonArrayRule() : S_PrintRule();
  if (eForm == tagMarkForm::TABLE) rule.strBetween = "\n";
  if (eForm == tagMarkForm::CSV && bSeveral) {
    rule.strBefore = C_MarkCsv().Heading();
    rule.strNothing = rule.strBefore;
  }
  return rule;
}

C_ShownMarks::C_ShownMarks(const std::string& strPath)
    : m_strPath(strPath), m_sound(OpenSound(strPath)) {}

void C_ShownMarks::Write(const S_MarkView& view, const PFN_Write& fnWrite) const {
  const PFN_Write fnPiece = [&fnWrite](std::string_view piece) {
    ThrowIfInterrupted();
    fnWrite(piece);
  };
  const auto own = view.bForImport ? WithoutLabelEvents(m_sound->Notes(), Info().dwNotesContainer)
                                   : std::optional<voxplay::Notes>();
  const voxplay::NotesView notes = own ? own->view() : m_sound->Notes();
  const C_MarkRows rows(notes, Info().dwRate);
  switch (view.eForm) {
    case tagMarkForm::TABLE:
      return WriteTable(m_strPath, rows, view.bColours, fnPiece);
    case tagMarkForm::JSON:
      return WriteJson(m_strPath, Info(), rows, fnPiece);
    case tagMarkForm::CSV:
      return WriteValues(m_strPath, rows, view.bSeveral, fnPiece);
    case tagMarkForm::LABELS:
      if (Info().dwRate != 0) return WriteLabelText(notes, Info().dwRate, fnPiece);
      throw C_Failure(NameOf(m_strPath), "its marks are no label track",
                      "it has no sample rate, and label tracks count seconds");
  }
}

}  // namespace tool
