// SPDX-License-Identifier: Apache-2.0
#include "base/Words.h"

#include <algorithm>

namespace api::words {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

void AppendHex(std::string& strText, unsigned int dwByte) {
  strText += kDigits[dwByte >> 4U & 15U];
  strText += kDigits[dwByte & 15U];
}

// Not std::isprint, which asks the locale.
bool IsPrintable(std::uint8_t byCharacter) { return byCharacter >= 0x20 && byCharacter <= 0x7E; }

}  // namespace

std::string Quoted(std::span<const std::uint8_t> bytes) {
  if (std::ranges::all_of(bytes, IsPrintable)) {
    return '"' + std::string(bytes.begin(), bytes.end()) + '"';
  }
  std::string strText;
  for (const std::uint8_t byValue : bytes) {
    if (!strText.empty()) strText += ' ';
    AppendHex(strText, byValue);
  }
  return strText;
}

std::string Hex16(std::uint16_t wValue) {
  std::string strText = "0x";
  AppendHex(strText, wValue >> 8U);
  AppendHex(strText, wValue);
  return strText;
}

std::string Counted(std::uint64_t qwCount, std::string_view noun) {
  std::string strText = std::to_string(qwCount) + ' ';
  strText += noun;
  if (qwCount != 1) strText += 's';
  return strText;
}

}  // namespace api::words
