// SPDX-License-Identifier: Apache-2.0
#include "convert/LostText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tool {
namespace {

constexpr std::string_view kHolds = " holds no ";
constexpr std::string_view kCannot = "cannot ";

struct S_Count {
  std::string strKind;  // "event"
  std::size_t nCount = 0;
};

// What has the same reason.
struct S_Group {
  std::string strReason;
  std::string strPart;  // "data": what alone is lost of each
  bool bWhole = false;  // nothing of it is kept
  std::vector<S_Count> counts;
};

S_Group& GroupOf(std::vector<S_Group>& groups, const S_Group& wanted) {
  const auto IsIt = [&](const S_Group& group) {
    return group.strReason == wanted.strReason && group.strPart == wanted.strPart;
  };
  const auto found = std::ranges::find_if(groups, IsIt);
  return found != groups.end() ? *found : groups.emplace_back(wanted);
}

S_Count& CountOf(std::vector<S_Count>& counts, const std::string& strKind) {
  const auto found = std::ranges::find(counts, strKind, &S_Count::strKind);
  return found != counts.end() ? *found : counts.emplace_back(S_Count{strKind});
}

// "data" of "event 1 at frame 48: its data is not kept"; "" where all of a mark is meant.
std::string PartIn(std::string_view name) {
  constexpr std::string_view kIts = ": its ";
  const std::size_t nIts = name.find(kIts);
  const std::size_t nEnd = std::min(name.rfind(" is not kept"), name.rfind(" are not kept"));
  if (nIts == std::string_view::npos || nEnd == std::string_view::npos) return "";
  std::string strPart =
      "the " + std::string(name.substr(nIts + kIts.size(), nEnd - nIts - kIts.size()));
  const std::size_t nAnd = strPart.find(" and its ");
  return nAnd == std::string::npos ? strPart : strPart.replace(nAnd, 9, " and the ");
}

// "region text 1 of cue point 3" is a "region text", and "sampler record" is what it is called.
std::string KindIn(std::string_view name) {
  const std::size_t nNumber = name.find_first_of("0123456789");
  return std::string(name.substr(0, nNumber == std::string_view::npos ? nNumber : nNumber - 1));
}

void Sort(std::vector<S_Group>& groups, std::string_view sentence) {
  const std::size_t nColon = std::min(sentence.rfind(": "), sentence.size());
  std::string_view reason = sentence.substr(std::min(nColon + 2, sentence.size()));
  const std::string_view name = sentence.substr(0, nColon);
  const std::size_t nHolds = reason.find(kHolds);
  S_Group group{std::string(reason.substr(0, nHolds)), PartIn(name), {}, {}};
  group.bWhole = nHolds != std::string_view::npos;
  if (group.bWhole) group.strReason += " holds none";
  ++CountOf(GroupOf(groups, group).counts, KindIn(name)).nCount;
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
  if (!group.strPart.empty()) {
    const bool bParts = group.strPart.find(" and ") != std::string::npos;
    return group.strPart + " of " + Listed(group.counts) + (bParts ? " are" : " is") +
           " not kept: " + group.strReason;
  }
  if (group.strReason.starts_with(kCannot)) return Listed(group.counts) + ' ' + group.strReason;
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
