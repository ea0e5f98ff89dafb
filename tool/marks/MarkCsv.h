// SPDX-License-Identifier: Apache-2.0
//
// Rows of marks (MarkRows.h) as comma-separated values. The first line names the members.
#pragma once

#include <string>
#include <string_view>

#include "marks/CsvText.h"
#include "marks/MarkRows.h"
#include "marks/RowSource.h"

namespace tool {

// The lines of a table.
class C_MarkCsv {
 public:
  // Of one file. The columns that every table has come first: kind, number, id, start, time,
  // length, name, text, main_command, sub_command and data. Further ones follow where a row has
  // them.
  explicit C_MarkCsv(const C_MarkRows& rows);
  // Of any files, with all columns that rows can have. Their names are in a first column, "file".
  C_MarkCsv();

  [[nodiscard]] std::string Heading() const { return CsvLine(m_columns); }
  [[nodiscard]] std::string Line(const C_Json& row, const std::string& strFile = "") const;

 private:
  C_CsvRow m_columns;
};

// The rows of a table; all values are texts, and where they stand is "line 2". The text must
// outlive the function. Throws C_BadRow for columns that rows do not have.
PFN_Rows RowsOfCsv(std::string_view text);

}  // namespace tool
