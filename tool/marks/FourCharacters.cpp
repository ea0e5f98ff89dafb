// SPDX-License-Identifier: Apache-2.0
#include "marks/FourCharacters.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace tool {
namespace {

constexpr std::size_t kCharacters = 4;
constexpr std::string_view kDigits = "0123456789abcdef";

}  // namespace

std::string HexText(std::string_view bytes) {
  std::string strText;
  for (const char chByte : bytes) {
    const auto byByte = static_cast<std::uint8_t>(chByte);
    strText += kDigits[byByte >> 4U];
    strText += kDigits[byByte & 0xFU];
  }
  return strText;
}

std::optional<std::string> FromHexText(std::string_view text) {
  if (text.size() % 2 != 0) return {};
  std::string strBytes;
  for (; !text.empty(); text.remove_prefix(2)) {
    std::uint8_t byByte = 0;
    const auto [pEnd, error] = std::from_chars(text.data(), text.data() + 2, byByte, 16);
    if (error != std::errc() || pEnd != text.data() + 2) return {};
    strBytes += static_cast<char>(byByte);
  }
  return strBytes;
}

std::string FourCharacters(const char* pchID) {
  const std::string_view id(pchID, kCharacters);
  const bool bPlain = std::ranges::all_of(id, [](char ch) { return ch >= ' ' && ch <= '~'; });
  return bPlain ? std::string(id) : HexText(id);
}

std::optional<std::string> FromFourCharacters(std::string_view text) {
  if (text.size() == kCharacters) return std::string(text);
  return text.size() == 2 * kCharacters ? FromHexText(text) : std::nullopt;
}

}  // namespace tool
