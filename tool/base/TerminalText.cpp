// SPDX-License-Identifier: Apache-2.0
#include "base/TerminalText.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <string_view>
#include <vector>

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale

namespace tool {
namespace {

constexpr const char* kDots = "...";
constexpr std::size_t kDotColumns = 3;

// While it lives, the thread's characters are UTF-8, whatever the user's are.
class C_Utf8 {
 public:
  C_Utf8() : m_utf8(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
    if (m_utf8 != nullptr) m_before = uselocale(m_utf8);
  }
  ~C_Utf8() {
    if (m_utf8 == nullptr) return;
    uselocale(m_before);
    freelocale(m_utf8);
  }
  C_Utf8(const C_Utf8&) = delete;
  C_Utf8& operator=(const C_Utf8&) = delete;

 private:
  locale_t m_utf8;
  locale_t m_before{};
};

struct S_Character {
  std::string_view bytes;
  int nColumns = 0;
};

// What is no character, or would be obeyed, is one byte of -1 columns.
S_Character FirstOf(std::string_view text) {
  std::mbstate_t state{};
  wchar_t wide = 0;
  const std::size_t cb = std::mbrtowc(&wide, text.data(), text.size(), &state);
  if (cb == 0 || cb > text.size()) return {text.substr(0, 1), -1};
  return {text.substr(0, cb), wcwidth(wide)};
}

template <typename Each>
void ForEachCharacter(std::string_view text, Each&& each) {
  const C_Utf8 utf8;
  while (!text.empty()) {
    const S_Character character = FirstOf(text);
    each(character);
    text.remove_prefix(character.bytes.size());
  }
}

}  // namespace

std::size_t ColumnsOf(const std::string& strText) {
  const auto IsPlain = [](char ch) { return ch >= ' ' && ch <= '~'; };
  if (std::ranges::all_of(strText, IsPlain)) return strText.size();
  std::size_t nColumns = 0;
  ForEachCharacter(strText, [&](const S_Character& character) {
    nColumns += character.nColumns < 0 ? 1 : static_cast<std::size_t>(character.nColumns);
  });
  return nColumns;
}

std::string FittedEnd(const std::string& strText, std::size_t nColumns) {
  std::size_t nLeft = ColumnsOf(strText);
  if (nLeft <= nColumns) return strText;
  if (nColumns < kDotColumns) return std::string(kDots).substr(0, nColumns);
  std::size_t cbLeftOut = 0;
  ForEachCharacter(strText, [&](const S_Character& character) {
    if (nLeft + kDotColumns <= nColumns) return;
    nLeft -= character.nColumns < 0 ? 1 : static_cast<std::size_t>(character.nColumns);
    cbLeftOut += character.bytes.size();
  });
  return kDots + strText.substr(cbLeftOut);
}

}  // namespace tool
