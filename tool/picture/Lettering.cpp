// SPDX-License-Identifier: Apache-2.0
#include "picture/Lettering.h"

#include <cstdint>

#include "base/Utf8.h"

namespace tool {
namespace {

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
    : m_surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1)),
      m_cairo(MakeCairo(m_surface.get())) {}

double C_Lettering::Width(std::string_view text, double dSize, bool bBold) const {
  ChooseFont(m_cairo.get(), dSize, bBold);
  cairo_text_extents_t extents{};
  cairo_text_extents(m_cairo.get(), std::string(text).c_str(), &extents);
  CheckCairo(cairo_status(m_cairo.get()));
  return extents.x_advance;
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
