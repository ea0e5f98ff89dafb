// SPDX-License-Identifier: Apache-2.0
#include "plot/Legend.h"

#include <array>
#include <string_view>

namespace tool {
namespace {

constexpr std::array<std::string_view, RANGE_KINDS> kRangeNames = {"silence", "uncompressed",
                                                                   "loop", "text"};
constexpr std::array<std::string_view, MARK_KINDS> kMarkNames = {"event", "cue point"};
// In letters' heights.
constexpr double kSwatch = 0.9;
constexpr double kToText = 0.4;
constexpr double kToNext = 1.2;

std::string CountText(std::string_view name, std::size_t nCount, std::size_t nNamed) {
  std::string strText = std::to_string(nCount) + ' ' + std::string(name);
  if (nCount != 1) strText += 's';
  if (nNamed < nCount) strText += ", " + std::to_string(nNamed) + " named";
  return strText;
}

}  // namespace

C_Legend::C_Legend(const S_Theme& theme, double dSize) : m_theme(theme), m_dSize(dSize) {}

void C_Legend::AddMarks(const S_Marks& marks, const S_MarkNames& names) {
  for (const tagMarkKind eKind : {MARK_EVENT, MARK_CUE}) {
    if (marks.counts[eKind] == 0) continue;
    Add(CountText(kMarkNames[eKind], marks.counts[eKind], names.counts[eKind]),
        ColourOf(m_theme, eKind), true);
  }
  for (const tagRangeKind eKind : {RANGE_SILENCE, RANGE_REGION, RANGE_LOOP, RANGE_TEXT}) {
    if (marks.ranges[eKind].empty()) continue;
    Add(std::string(kRangeNames[eKind]), ColourOf(m_theme, eKind));
  }
}

void C_Legend::AddWaves() {
  Add("peak", m_theme.peak);
  Add("RMS", m_theme.mean);
}

void C_Legend::AddClipping() {
  Add("clipped", m_theme.clipped);
  m_bClipping = true;
}

int C_Legend::Arrange(const C_Lettering& lettering, double dWidth) {
  double dX = 0.0;
  int nRow = 0;
  for (S_LegendItem& item : m_items) {
    const double dItem = (kSwatch + kToText) * m_dSize + lettering.Width(item.strText, m_dSize);
    if (dX > 0.0 && dX + dItem > dWidth) {
      dX = 0.0;
      ++nRow;
    }
    item.dX = dX;
    item.nRow = nRow;
    dX += dItem + kToNext * m_dSize;
  }
  return m_items.empty() ? 0 : nRow + 1;
}

void C_Legend::Draw(I_Canvas& canvas, double dX, double dY, bool bClipping) const {
  for (const S_LegendItem& item : m_items) {
    if (m_bClipping && !bClipping && &item == &m_items.back()) continue;
    const double dLeft = dX + item.dX;
    const double dBase = dY + (item.nRow * kLegendRow + 1.0) * m_dSize;
    const double dSwatch = kSwatch * m_dSize;
    const S_Box box = {dLeft, dBase - dSwatch + 0.5, dSwatch, dSwatch};
    const S_Box line = {dLeft + dSwatch / 2 - 1, box.dY - 1, 2, dSwatch + 2};
    canvas.Fill(item.bLine ? line : box, item.colour);
    canvas.Text({dLeft + dSwatch + kToText * m_dSize, dBase}, item.strText,
                {.dSize = m_dSize, .colour = m_theme.ink});
  }
}

void C_Legend::Add(const std::string& strText, const S_Colour& colour, bool bLine) {
  m_items.push_back({strText, colour, bLine});
}

const S_Colour& ColourOf(const S_Theme& theme, tagMarkKind eKind) {
  return eKind == MARK_EVENT ? theme.event : theme.cue;
}

const S_Colour& ColourOf(const S_Theme& theme, tagRangeKind eKind) {
  switch (eKind) {
    case RANGE_SILENCE:
      return theme.silence;
    case RANGE_REGION:
      return theme.region;
    case RANGE_LOOP:
      return theme.loop;
    default:
      return theme.text;
  }
}

}  // namespace tool
