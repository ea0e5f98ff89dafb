// SPDX-License-Identifier: Apache-2.0
#include "plot/MarkNames.h"

#include <algorithm>

namespace tool {
namespace {

// In letters' heights.
constexpr double kWidest = 14.0;
constexpr double kSpace = 0.8;
constexpr double kToLine = 0.3;
constexpr double kBetweenLines = 0.6;

class C_Rows {
 public:
  explicit C_Rows(int nRows) : m_ends(static_cast<std::size_t>(nRows), -1.0) {}

  // A name at the right of its line. The line goes through all rows below, so these must be free
  // there as well. The highest row is taken that is free in this way.
  [[nodiscard]] int RowAt(double dLine) const {
    std::size_t nRow = m_ends.size();
    while (nRow > 0 && m_ends[nRow - 1] <= dLine) --nRow;
    return nRow == m_ends.size() ? -1 : static_cast<int>(nRow);
  }
  // A name at the left of its line: no name and no line may be there, of any row.
  [[nodiscard]] bool AllEndBefore(double dX) const {
    return dX >= 0.0 && *std::max_element(m_ends.begin(), m_ends.end()) <= dX;
  }
  void Take(int nRow, double dEnd) { m_ends[static_cast<std::size_t>(nRow)] = dEnd; }

 private:
  std::vector<double> m_ends;
};

}  // namespace

S_MarkNames PlaceNames(const S_Marks& marks, const C_Lettering& lettering, double dWidth,
                       double dSize, int nMostRows) {
  S_MarkNames result;
  C_Rows rows(nMostRows);
  double dNextLine = 0.0;
  for (std::size_t n = 0; n < marks.marks.size(); ++n) {
    const S_Mark& mark = marks.marks[n];
    const double dLine = mark.nColumn + 0.5;
    const int nRow = rows.RowAt(dLine);
    if (nRow < 0 || dLine < dNextLine) continue;
    const double dMost = std::min(kWidest * dSize, dWidth / 2);
    std::string strText = lettering.Cut(mark.strName, dMost, dSize);
    const double dLength = lettering.Width(strText, dSize);
    double dX = dLine + kToLine * dSize;
    if (dX + dLength > dWidth) {
      dX = dLine - kToLine * dSize - dLength;
      if (!rows.AllEndBefore(dX)) continue;
    }
    dNextLine = dLine + kBetweenLines * dSize;
    rows.Take(nRow, std::max(dX + dLength, dLine) + kSpace * dSize);
    result.names.push_back({n, nRow, dX, std::move(strText)});
    result.nRows = std::max(result.nRows, nRow + 1);
    ++result.counts[mark.eKind];
  }
  return result;
}

}  // namespace tool
