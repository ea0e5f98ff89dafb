// SPDX-License-Identifier: Apache-2.0
#include "marks/LabelMeaning.h"

#include <charconv>
#include <optional>

#include "marks/QuotedText.h"

namespace tool {
namespace {

constexpr std::array<std::string_view, 6> kKinds = {"event", "silence", "region",
                                                    "loop",  "note",    "text"};

// "3/5" as numbers; false for anything else.
bool ReadNumbers(std::string_view text, std::array<std::uint64_t, 3>& numbers) {
  for (std::uint64_t& qwNumber : numbers) {
    const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), qwNumber);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(pEnd - text.data()));
    if (text.empty()) return true;
    if (text.front() != '/') return false;
    text.remove_prefix(1);
  }
  return false;
}

// The tag that a line begins with; what follows it stays in line.
std::optional<S_LabelMeaning> TakeTag(std::string_view& line) {
  const std::size_t nEnd = line.find(']');
  if (!line.starts_with('[') || nEnd == std::string_view::npos) return {};
  std::string_view tag = line.substr(1, nEnd - 1);
  for (const std::string_view kind : kKinds) {
    if (!tag.starts_with(kind)) continue;
    S_LabelMeaning meaning{std::string(kind), {}, {}, false};
    tag.remove_prefix(kind.size());
    if (!tag.empty() && (tag.front() != ' ' || !ReadNumbers(tag.substr(1), meaning.numbers))) {
      return {};
    }
    line.remove_prefix(nEnd + 1);
    return meaning;
  }
  return {};
}

bool HasTag(std::string_view text) { return TakeTag(text).has_value(); }

}  // namespace

std::string LabelTag(const std::string& strKind, std::initializer_list<std::uint64_t> numbers) {
  std::string strTag = "[" + strKind;
  char chBefore = ' ';
  for (const std::uint64_t qwNumber : numbers) {
    strTag += chBefore + std::to_string(qwNumber);
    chBefore = '/';
  }
  return strTag + ']';
}

S_LabelMeaning MeaningOfLabel(std::string_view line) {
  S_LabelMeaning meaning = TakeTag(line).value_or(S_LabelMeaning{"cue", {}, {}, false});
  if (meaning.strKind != "cue" && line.starts_with(' ')) line.remove_prefix(1);
  meaning.bHasText = !line.empty();
  meaning.strText = FromOneLine(line, &HasTag);
  return meaning;
}

std::string LabelLineText(std::string_view text) { return OnOneLine(text, &HasTag); }

}  // namespace tool
