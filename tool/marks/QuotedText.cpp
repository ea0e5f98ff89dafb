// SPDX-License-Identifier: Apache-2.0
#include "marks/QuotedText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

#include "marks/FourCharacters.h"

namespace tool {
namespace {

bool IsControl(char ch) { return static_cast<std::uint8_t>(ch) < 0x20 || ch == '\x7F'; }

std::string Escaped(char ch) {
  switch (ch) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    case '\\':
      return "\\\\";
    case '"':
      return "\\\"";
    default:
      return IsControl(ch) ? "\\x" + HexText({&ch, 1}) : std::string(1, ch);
  }
}

// What follows a backslash; empty when nothing does that is known. Takes it from the text.
std::optional<char> Unescaped(std::string_view& rest) {
  if (rest.empty()) return {};
  const char ch = rest.front();
  rest.remove_prefix(1);
  if (ch == 'n') return '\n';
  if (ch == 'r') return '\r';
  if (ch == 't') return '\t';
  if (ch == '\\' || ch == '"') return ch;
  const auto byte = ch == 'x' ? FromHexText(rest.substr(0, 2)) : std::nullopt;
  if (!byte || byte->size() != 1) return {};
  rest.remove_prefix(2);
  return byte->front();
}

// What stands between quotes; empty for a text that is not of this form.
std::optional<std::string> Unquoted(std::string_view text) {
  if (text.size() < 2 || !text.starts_with('"') || !text.ends_with('"')) return {};
  std::string_view rest = text.substr(1, text.size() - 2);
  std::string strText;
  while (!rest.empty()) {
    const char ch = rest.front();
    rest.remove_prefix(1);
    if (ch == '"') return {};
    const std::optional<char> unescaped = ch == '\\' ? Unescaped(rest) : ch;
    if (!unescaped) return {};
    strText += *unescaped;
  }
  return strText;
}

// The text becomes shorter with each pair of quotes, so this ends.
bool NeedsQuotes(std::string_view text, PFN_HasMeaning pfnHasMeaning) {
  if (text.empty() || std::ranges::any_of(text, IsControl) || pfnHasMeaning(text)) return true;
  const auto inner = Unquoted(text);
  return inner && NeedsQuotes(*inner, pfnHasMeaning);
}

}  // namespace

std::string OnOneLine(std::string_view text, PFN_HasMeaning pfnHasMeaning) {
  if (!NeedsQuotes(text, pfnHasMeaning)) return std::string(text);
  std::string strLine = "\"";
  for (const char ch : text) strLine += Escaped(ch);
  return strLine + '"';
}

std::string FromOneLine(std::string_view line, PFN_HasMeaning pfnHasMeaning) {
  const auto inner = Unquoted(line);
  return inner && NeedsQuotes(*inner, pfnHasMeaning) ? *inner : std::string(line);
}

}  // namespace tool
