// SPDX-License-Identifier: Apache-2.0
#include "base/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tool {
namespace {

// Windows-1252 from 0x80 on; all other bytes are the characters of the same number. The five that
// have no character there are the control characters of the same number.
constexpr std::array<char16_t, 32> kWindows = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr std::uint8_t kFirstOfTable = 0x80;

std::uint8_t ByteAt(std::string_view text, std::size_t nAt) {
  return static_cast<std::uint8_t>(text[nAt]);
}

std::size_t LengthByLead(std::uint8_t byLead) {
  if (byLead < 0x80) return 1;
  if (byLead < 0xC2 || byLead > 0xF4) return 0;
  if (byLead < 0xE0) return 2;
  return byLead < 0xF0 ? 3 : 4;
}

// The second byte decides whether a character has a shorter form, is half of a pair of UTF-16, or
// is beyond the last one.
bool IsSecond(std::uint8_t byLead, std::uint8_t bySecond) {
  const std::uint8_t byLeast = byLead == 0xE0 ? 0xA0 : byLead == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t byMost = byLead == 0xED ? 0x9F : byLead == 0xF4 ? 0x8F : 0xBF;
  return bySecond >= byLeast && bySecond <= byMost;
}

// How many bytes the first character has; 0 when these bytes are none.
std::size_t FirstLength(std::string_view text) {
  const std::size_t nLength = LengthByLead(ByteAt(text, 0));
  if (nLength < 2) return nLength;
  if (text.size() < nLength || !IsSecond(ByteAt(text, 0), ByteAt(text, 1))) return 0;
  const bool bWhole = std::ranges::all_of(text.substr(2, nLength - 2), [](char chByte) {
    return (static_cast<std::uint8_t>(chByte) & 0xC0U) == 0x80U;
  });
  return bWhole ? nLength : 0;
}

void AppendCharacter(std::string& strText, char16_t wCharacter) {
  const auto Append = [&strText](unsigned int dwByte) {
    strText += static_cast<char>(static_cast<std::uint8_t>(dwByte));
  };
  if (wCharacter < 0x80) return Append(wCharacter);
  if (wCharacter < 0x800) {
    Append(0xC0U | static_cast<unsigned int>(wCharacter) >> 6U);
  } else {
    Append(0xE0U | static_cast<unsigned int>(wCharacter) >> 12U);
    Append(0x80U | (static_cast<unsigned int>(wCharacter) >> 6U & 0x3FU));
  }
  Append(0x80U | (wCharacter & 0x3FU));
}

char16_t WindowsCharacter(char chByte) {
  const auto byByte = static_cast<std::uint8_t>(chByte);
  const bool bInTable = byByte >= kFirstOfTable && byByte < kFirstOfTable + kWindows.size();
  return bInTable ? kWindows.at(byByte - kFirstOfTable) : byByte;
}

std::string Escaped(char chByte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  if (chByte == '\n') return "\\n";
  if (chByte == '\r') return "\\r";
  if (chByte == '\t') return "\\t";
  const auto byByte = static_cast<std::uint8_t>(chByte);
  return std::string("\\x") + kDigits[byByte >> 4U] + kDigits[byByte & 0xFU];
}

// Among the characters of two bytes there are controls, too.
bool IsControl(std::string_view character) {
  const std::uint8_t byFirst = ByteAt(character, 0);
  if (character.size() == 2) return byFirst == 0xC2 && ByteAt(character, 1) < 0xA0;
  return byFirst < 0x20 || byFirst == 0x7F;
}

}  // namespace

bool IsUtf8(std::string_view text) noexcept {
  while (!text.empty()) {
    const std::size_t nLength = FirstLength(text);
    if (nLength == 0) return false;
    text.remove_prefix(nLength);
  }
  return true;
}

std::string AsUtf8(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string strText;
  for (const char chByte : text) AppendCharacter(strText, WindowsCharacter(chByte));
  return strText;
}

std::string Printable(std::string_view text) {
  std::string strText;
  while (!text.empty()) {
    const std::size_t nLength = FirstLength(text);
    const std::string_view first = text.substr(0, std::max<std::size_t>(nLength, 1));
    if (nLength != 0 && !IsControl(first)) {
      strText += first;
    } else {
      for (const char chByte : first) strText += Escaped(chByte);
    }
    text.remove_prefix(first.size());
  }
  return strText;
}

}  // namespace tool
