// SPDX-License-Identifier: Apache-2.0
#include "options/NegativeValues.h"

#include <string_view>

namespace tool {
namespace {

bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }

// "-3", "-.5", "-50:200".
bool IsNegative(std::string_view text) {
  if (text.size() < 2 || text[0] != '-' || text == "-0") return false;
  return (IsDigit(text[1]) || text[1] == '.') &&
         text.find_first_not_of("0123456789.:", 1) == std::string_view::npos;
}

bool MayTakeValue(std::string_view text) {
  return text.size() > 2 && text.starts_with("--") && text.find('=') == std::string_view::npos;
}

}  // namespace

std::vector<std::string> WithNegativeValues(std::span<const char* const> arguments) {
  std::vector<std::string> joined;
  bool bOptions = true;  // until "--" ends them
  bool bMayTake = false;
  for (const char* const pszArgument : arguments) {
    if (bMayTake && IsNegative(pszArgument)) {
      joined.back() += std::string("=") + pszArgument;
      bMayTake = false;
      continue;
    }
    joined.emplace_back(pszArgument);
    bOptions = bOptions && joined.back() != "--";
    bMayTake = bOptions && MayTakeValue(joined.back());
  }
  return joined;
}

}  // namespace tool
