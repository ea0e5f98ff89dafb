// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>

namespace tool {

// Frames that are shared out among the columns of a picture, as evenly as whole frames can be. With
// fewer frames than columns, some columns have none.
class C_Columns {
 public:
  C_Columns() = default;
  C_Columns(std::uint64_t qwFrames, int nColumns)
      : m_qwFrames(qwFrames), m_nColumns(std::max(nColumns, 1)) {}

  [[nodiscard]] std::uint64_t Frames() const noexcept { return m_qwFrames; }
  [[nodiscard]] int Count() const noexcept { return m_nColumns; }

  // The first frame of a column; of the one after the last, the number of frames.
  [[nodiscard]] std::uint64_t Begin(int nColumn) const noexcept {
    const auto qwColumn = static_cast<std::uint64_t>(nColumn);
    const auto qwColumns = static_cast<std::uint64_t>(m_nColumns);
    return m_qwFrames / qwColumns * qwColumn + m_qwFrames % qwColumns * qwColumn / qwColumns;
  }
  // Where a frame begins, in columns and parts of them. It may lie outside.
  [[nodiscard]] double Place(double dFrame) const noexcept {
    return m_qwFrames == 0 ? 0.0 : dFrame / static_cast<double>(m_qwFrames) * m_nColumns;
  }
  // The column of a frame; the last one of frames after the end.
  [[nodiscard]] int ColumnOf(std::uint64_t qwFrame) const noexcept {
    const double dPlace = Place(static_cast<double>(qwFrame));
    return static_cast<int>(std::min(dPlace, static_cast<double>(m_nColumns - 1)));
  }

 private:
  std::uint64_t m_qwFrames = 0;
  int m_nColumns = 1;
};

}  // namespace tool
