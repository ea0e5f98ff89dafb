// SPDX-License-Identifier: Apache-2.0
#include "marks/RowMembers.h"

#include <algorithm>
#include <vector>

#include "base/Utf8.h"
#include "options/Suggestion.h"

namespace tool {
namespace {

// People may give a duration in place of a length, and say which file it is.
std::vector<std::string> AllMembers() {
  std::vector<std::string> names(kUsualMembers.begin(), kUsualMembers.end());
  names.insert(names.end(), kRareMembers.begin(), kRareMembers.end());
  names.insert(names.end(), {"duration", "file"});
  return names;
}

}  // namespace

std::optional<std::string> UnknownMember(const std::string& strName) {
  static const std::vector<std::string> names = AllMembers();
  if (std::ranges::find(names, strName) != names.end()) return {};
  const auto nearest = Nearest(strName, names);
  return '"' + Printable(strName) + "\" is unknown" +
         (nearest ? "; did you mean \"" + *nearest + "\"?" : "");
}

}  // namespace tool
