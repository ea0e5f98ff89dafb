// SPDX-License-Identifier: Apache-2.0
#include "options/Suggestion.h"

#include <algorithm>
#include <numeric>

#include "options/OptionTable.h"

namespace tool {
namespace {

// How many letters must be changed, added, left out or swapped with their neighbours.
std::size_t Distance(const std::string& strA, const std::string& strB) {
  std::vector<std::size_t> before(strB.size() + 1);
  std::vector<std::size_t> row(strB.size() + 1);
  std::vector<std::size_t> next(strB.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= strA.size(); ++i) {
    next[0] = i;
    for (std::size_t j = 1; j <= strB.size(); ++j) {
      const std::size_t nChanged = strA[i - 1] == strB[j - 1] ? 0 : 1;
      next[j] = std::min({row[j] + 1, next[j - 1] + 1, row[j - 1] + nChanged});
      const bool bSwapped =
          i > 1 && j > 1 && strA[i - 1] == strB[j - 2] && strA[i - 2] == strB[j - 1];
      if (bSwapped) next[j] = std::min(next[j], before[j - 2] + 1);
    }
    before.swap(row);
    row.swap(next);
  }
  return row.back();
}

std::vector<std::string> OptionNames(const CLI::App& table) {
  std::vector<std::string> names;
  for (const S_Argument& option : OptionsOf(table)) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

std::vector<std::string> CommandNames(const CLI::App& table) {
  std::vector<std::string> names;
  for (const CLI::App* pCommand : CommandsIn(table)) names.push_back(NameOf(*pCommand));
  return names;
}

std::string Described(const char* pszWhat, const std::string& strWord,
                      const std::vector<std::string>& candidates) {
  const std::string strText = strWord + ": " + pszWhat;
  const auto nearest = Nearest(strWord, candidates);
  return nearest ? strText + "; did you mean \"" + *nearest + "\"?" : strText;
}

}  // namespace

std::optional<std::string> Nearest(const std::string& strWord,
                                   const std::vector<std::string>& candidates) {
  // No name is nearly as long, and the time grows with the length.
  constexpr std::size_t kLongest = 64;
  if (strWord.empty() || strWord.size() > kLongest) return std::nullopt;
  const auto distance = [&](const std::string& strName) { return Distance(strWord, strName); };
  const auto nearest = std::ranges::min_element(candidates, {}, distance);
  if (nearest == candidates.end()) return std::nullopt;
  const std::size_t nAllowed = std::max<std::size_t>(1, strWord.size() / 3);
  if (distance(*nearest) <= nAllowed) return *nearest;
  const auto begins =
      std::ranges::find_if(candidates, [&](const auto& str) { return str.starts_with(strWord); });
  return begins != candidates.end() ? std::optional(*begins) : std::nullopt;
}

std::optional<std::string> UnknownWord(const CLI::App& table) {
  const auto unknown = UnknownWords(table);
  const auto word = std::ranges::find_if(unknown, [](const auto& str) { return str != "--"; });
  if (word == unknown.end()) return std::nullopt;
  if (word->starts_with("-")) {
    return Described("no such option", word->substr(0, word->find('=')), OptionNames(table));
  }
  if (CommandsIn(table).empty()) return *word + ": one operand too many";
  return Described("no such command", *word, CommandNames(table));
}

}  // namespace tool
