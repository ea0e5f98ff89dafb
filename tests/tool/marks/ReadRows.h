// SPDX-License-Identifier: Apache-2.0
//
// Notes as rows and as texts, and back.
#pragma once

#include <string>

#include "AllNotes.h"
#include "marks/LabelText.h"
#include "marks/MarkCsv.h"
#include "marks/MarkJson.h"
#include "marks/MarkNotes.h"
#include "marks/MarkRows.h"

namespace tool::test {

inline constexpr std::uint32_t kRate = 16000;

inline C_Json Rows(const voxplay::Notes& notes) { return RowsOf(notes, kRate); }

inline voxplay::Notes NotesOf(const C_Json& rows) {
  voxplay::Notes notes;
  AddRows(RowsIn(rows), kRate, notes);
  return notes;
}

// The values of a table, and a label track.
inline std::string CsvOf(const voxplay::Notes& notes) {
  const C_MarkRows rows(notes, kRate);
  const C_MarkCsv table(rows);
  std::string strText = table.Heading();
  rows.ForEach([&](const C_Json& row) { strText += table.Line(row); });
  return strText;
}
inline std::string LabelTextOf(const voxplay::Notes& notes, std::uint32_t dwRate) {
  std::string strText;
  WriteLabelText(notes, dwRate, [&](std::string_view line) { strText += line; });
  return strText;
}

inline voxplay::Notes NotesFrom(const PFN_Rows& fnRows, std::uint32_t dwRate = kRate) {
  voxplay::Notes notes;
  AddRows(fnRows, dwRate, notes);
  return notes;
}
inline std::string WhyNotFrom(const PFN_Rows& fnRows, std::uint32_t dwRate = kRate) {
  try {
    NotesFrom(fnRows, dwRate);
    return "";
  } catch (const C_BadRow& bad) {
    return bad.what();
  }
}

// What is wrong with a row, as the message says it.
inline std::string WhyNot(const C_Json& row) {
  try {
    NotesOf(C_Json::array({row}));
    return "";
  } catch (const C_BadRow& bad) {
    return bad.what();
  }
}

// As with a file between.
inline C_Json ThroughText(const C_Json& rows) { return C_Json::parse(JsonText(rows)); }

}  // namespace tool::test
