// SPDX-License-Identifier: Apache-2.0
#include "picture/Lettering.h"

#include <cstdint>

#include "base/Utf8.h"

namespace tool {
namespace {

constexpr const char* kFont = "DejaVu Sans";
constexpr std::size_t kMostCharacters = 256;
constexpr std::string_view kEllipsis = "\u2026";

bool Continues(char chByte) { return (static_cast<std::uint8_t>(chByte) & 0xC0U) == 0x80U; }

// The first character of a text of UTF-8.
std::string_view First(std::string_view text) {
  std::size_t cbFirst = 1;
  while (cbFirst < text.size() && Continues(text[cbFirst])) ++cbFirst;
  return text.substr(0, cbFirst);
}

// Controls have no shape, and two other characters are in no XML document.
std::string_view Visible(std::string_view character) {
  constexpr char kSpace = ' ';
  constexpr char kDelete = '\x7f';
  const bool bControl = character.size() == 1 && static_cast<std::uint8_t>(character[0]) < kSpace;
  const bool bLateControl = character >= "\u0080" && character <= "\u009f" && character.size() == 2;
  if (bControl || bLateControl || character[0] == kDelete) return " ";
  return character == "\ufffe" || character == "\uffff" ? "\ufffd" : character;
}

// Without the last character.
void Shorten(std::string& strText) {
  while (!strText.empty() && Continues(strText.back())) strText.pop_back();
  if (!strText.empty()) strText.pop_back();
}

}  // namespace

C_Lettering::C_Lettering()
    : m_context(pango_font_map_create_context(pango_cairo_font_map_get_default())) {
  const C_DrawingPtr<cairo_font_options_t> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(m_context.get(), options.get());
  pango_context_set_round_glyph_positions(m_context.get(), FALSE);
  // Otherwise the language of the user chooses among fonts.
  pango_context_set_language(m_context.get(), pango_language_from_string("en"));
}

C_DrawingPtr<PangoLayout> C_Lettering::Line(std::string_view text, double dSize, bool bBold) const {
  C_DrawingPtr<PangoLayout> line(pango_layout_new(m_context.get()));
  const C_DrawingPtr<PangoFontDescription> font(pango_font_description_new());
  pango_font_description_set_family_static(font.get(), kFont);
  pango_font_description_set_absolute_size(font.get(), dSize * PANGO_SCALE);
  pango_font_description_set_weight(font.get(), bBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_layout_set_font_description(line.get(), font.get());
  pango_layout_set_single_paragraph_mode(line.get(), TRUE);
  pango_layout_set_text(line.get(), text.data(), static_cast<int>(text.size()));
  return line;
}

double C_Lettering::Width(std::string_view text, double dSize, bool bBold) const {
  return WidthOf(Line(text, dSize, bBold).get());
}

std::string C_Lettering::Cut(std::string_view text, double dWidth, double dSize, bool bBold) const {
  std::string strText(text);
  if (Width(strText, dSize, bBold) <= dWidth) return strText;
  while (!strText.empty()) {
    Shorten(strText);
    while (strText.ends_with(' ')) strText.pop_back();
    std::string strCut = strText + std::string(kEllipsis);
    if (!strText.empty() && Width(strCut, dSize, bBold) <= dWidth) return strCut;
  }
  return "";
}

double WidthOf(PangoLayout* pLine) {
  PangoRectangle box{};
  pango_layout_get_extents(pLine, nullptr, &box);
  return static_cast<double>(box.width) / PANGO_SCALE;
}

std::string CleanText(std::string_view text) {
  const std::string strWhole = AsUtf8(text);
  std::string_view rest = strWhole;
  std::string strText;
  for (std::size_t n = 0; n < kMostCharacters && !rest.empty(); ++n) {
    const std::string_view character = First(rest);
    strText += Visible(character);
    rest.remove_prefix(character.size());
  }
  return strText;
}

}  // namespace tool
