// SPDX-License-Identifier: Apache-2.0
#include "convert/LostText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tool {
namespace {

constexpr std::string_view kHolds = " holds no ";

struct S_Count {
  std::string strKind;  // "event"
  std::size_t nCount = 0;
};

// What has the same reason.
struct S_Group {
  std::string strReason;
  bool bWhole = false;  // nothing of it is kept
  std::vector<S_Count> counts;
};

template <typename Items, typename Key>
auto& EntryOf(std::vector<Items>& items, const std::string& strKey, Key key) {
  const auto found = std::ranges::find(items, strKey, key);
  if (found != items.end()) return *found;
  items.emplace_back().*key = strKey;
  return items.back();
}

// "region text 1 of cue point 3" is a "region text", and "sampler record" is what it is called.
std::string KindIn(std::string_view name) {
  const std::size_t nNumber = name.find_first_of("0123456789");
  return std::string(name.substr(0, nNumber == std::string_view::npos ? nNumber : nNumber - 1));
}

void Sort(std::vector<S_Group>& groups, std::string_view sentence) {
  const std::size_t nColon = std::min(sentence.rfind(": "), sentence.size());
  std::string_view reason = sentence.substr(std::min(nColon + 2, sentence.size()));
  const std::size_t nHolds = reason.find(kHolds);
  const bool bWhole = nHolds != std::string_view::npos;
  std::string strReason(reason.substr(0, nHolds));
  if (bWhole) strReason += " holds none";
  S_Group& group = EntryOf(groups, strReason, &S_Group::strReason);
  group.bWhole = bWhole;
  ++EntryOf(group.counts, KindIn(sentence.substr(0, nColon)), &S_Count::strKind).nCount;
}

std::string Counted(const S_Count& count) {
  const bool bOne = count.nCount == 1;
  std::string strKind = count.strKind;
  if (strKind == "silence") strKind = "silence segment";
  return std::to_string(count.nCount) + ' ' + strKind + (bOne ? "" : "s");
}

// "3 events, 2 loops and 1 label".
std::string Listed(const std::vector<S_Count>& counts) {
  std::string strList;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (i > 0) strList += i + 1 == counts.size() ? " and " : ", ";
    strList += Counted(counts[i]);
  }
  return strList;
}

std::string TextOf(const S_Group& group) {
  const bool bOne = group.counts.size() == 1 && group.counts.front().nCount == 1;
  return Listed(group.counts) + (bOne ? " is" : " are") +
         (group.bWhole ? " not kept: " : " not kept as before: ") + group.strReason;
}

}  // namespace

std::string LostText(const std::vector<std::string>& sentences) {
  std::vector<S_Group> groups;
  for (const std::string& strSentence : sentences) Sort(groups, strSentence);
  std::string strText;
  for (const S_Group& group : groups) strText += (strText.empty() ? "" : "; ") + TextOf(group);
  return strText;
}

}  // namespace tool
