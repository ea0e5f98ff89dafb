// SPDX-License-Identifier: Apache-2.0
#include "picture/Lettering.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace tool {
namespace {

constexpr std::size_t kMostCharacters = 256;
constexpr std::string_view kEllipsis = "\u2026";
constexpr char32_t kReplacement = 0xFFFD;

// 0x80 to 0x9F of Windows-1252; 0 where it has no character.
constexpr std::array<char16_t, 32> kWindows = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

bool Continues(char chByte) { return (static_cast<std::uint8_t>(chByte) & 0xC0U) == 0x80U; }

// How many bytes follow a first byte; nullopt when it is none.
std::optional<std::size_t> Following(std::uint8_t byFirst) {
  if (byFirst < 0x80) return 0;
  if (byFirst >= 0xC2 && byFirst < 0xE0) return 1;
  if (byFirst >= 0xE0 && byFirst < 0xF0) return 2;
  if (byFirst >= 0xF0 && byFirst < 0xF5) return 3;
  return std::nullopt;
}

// Neither longer than necessary nor half of a pair, nor beyond the last character.
bool IsCharacter(char32_t chCode, std::size_t nFollowing) {
  constexpr std::array<char32_t, 4> kLeast = {0, 0x80, 0x800, 0x10000};
  return chCode >= kLeast[nFollowing] && chCode <= 0x10FFFF &&
         (chCode < 0xD800 || chCode > 0xDFFF);
}

// Takes the first character of a text away; nullopt when the text does not begin with one.
std::optional<char32_t> TakeUtf8(std::string_view& text) {
  const auto byFirst = static_cast<std::uint8_t>(text.front());
  const auto nFollowing = Following(byFirst);
  if (!nFollowing || text.size() - 1 < *nFollowing) return {};
  char32_t chCode = *nFollowing == 0 ? byFirst : byFirst & (0x3FU >> *nFollowing);
  for (std::size_t i = 1; i <= *nFollowing; ++i) {
    if (!Continues(text[i])) return {};
    chCode = chCode << 6U | (static_cast<std::uint8_t>(text[i]) & 0x3FU);
  }
  if (!IsCharacter(chCode, *nFollowing)) return {};
  text.remove_prefix(*nFollowing + 1);
  return chCode;
}

char32_t TakeWindows(std::string_view& text) {
  const auto byCode = static_cast<std::uint8_t>(text.front());
  text.remove_prefix(1);
  if (byCode < 0x80 || byCode > 0x9F) return byCode;
  const char16_t chCode = kWindows[byCode - 0x80U];
  return chCode == 0 ? kReplacement : chCode;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!TakeUtf8(text)) return false;
  }
  return true;
}

char32_t Visible(char32_t chCode) {
  if (chCode < 0x20 || (chCode >= 0x7F && chCode < 0xA0)) return ' ';
  return (chCode & 0xFFFEU) == 0xFFFEU ? kReplacement : chCode;
}

void Append(std::string& strText, char32_t chCode) {
  if (chCode < 0x80) {
    strText += static_cast<char>(chCode);
    return;
  }
  const int nFollowing = chCode < 0x800 ? 1 : chCode < 0x10000 ? 2 : 3;
  const std::uint32_t dwLead = nFollowing == 1 ? 0xC0U : nFollowing == 2 ? 0xE0U : 0xF0U;
  strText += static_cast<char>(static_cast<std::uint8_t>(dwLead | chCode >> (6 * nFollowing)));
  for (int i = nFollowing - 1; i >= 0; --i) {
    strText += static_cast<char>(static_cast<std::uint8_t>(0x80U | (chCode >> (6 * i) & 0x3FU)));
  }
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

std::string C_Lettering::Cut(std::string_view text, double dWidth, double dSize,
                             bool bBold) const {
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
  const bool bUtf8 = IsUtf8(text);
  std::string strText;
  for (std::size_t n = 0; n < kMostCharacters && !text.empty(); ++n) {
    Append(strText, Visible(bUtf8 ? *TakeUtf8(text) : TakeWindows(text)));
  }
  return strText;
}

}  // namespace tool
