// SPDX-License-Identifier: Apache-2.0
#include "play/StatusLine.h"

#include <algorithm>

#include "base/TerminalText.h"
#include "base/TimeText.h"

namespace tool {
namespace {

constexpr const char* kBetween = "  ";
constexpr std::size_t kBetweenColumns = 2;
// Inside its brackets.
constexpr std::size_t kShortestBar = 10;
constexpr std::size_t kLongestBar = 60;
constexpr std::size_t kShortestName = 8;

std::string Bar(const S_PlayStatus& status, std::size_t nColumns) {
  const std::uint64_t qwEnd = std::min(status.span.qwEnd, status.qwFrames);
  const double dLength = static_cast<double>(qwEnd - std::min(status.span.qwBegin, qwEnd));
  const double dDone =
      static_cast<double>(status.qwFrame - std::min(status.span.qwBegin, status.qwFrame));
  const double dShare = dLength > 0.0 ? std::min(dDone / dLength, 1.0) : 0.0;
  const auto nDone = static_cast<std::size_t>(dShare * static_cast<double>(nColumns));
  std::string strBar(nDone, '=');
  if (nDone < nColumns) strBar += '>';
  strBar.resize(nColumns, ' ');
  return "[" + strBar + "]";
}

std::string Times(const S_PlayStatus& status) {
  std::string strText = ClockText(status.qwFrame, status.dwRate);
  if (status.qwFrames != kFramesUnknown) {
    strText += " / " + ClockText(status.qwFrames, status.dwRate);
  }
  return strText;
}

}  // namespace

std::string StatusLine(const S_PlayStatus& status, std::size_t nColumns) {
  // A line that reaches the last column would be broken by some terminals.
  const std::size_t nRoom = nColumns > 0 ? nColumns - 1 : 0;
  const std::string strMark = status.bPaused ? " (paused)" : "";
  std::string strTimes = Times(status) + strMark;
  if (strTimes.size() > nRoom) strTimes = ClockText(status.qwFrame, status.dwRate) + strMark;
  if (strTimes.size() + kBetweenColumns + kShortestName > nRoom) return strTimes.substr(0, nRoom);
  const std::string strName = FittedEnd(status.strName, nRoom - strTimes.size() - kBetweenColumns);
  std::string strText = strName + kBetween + strTimes;
  const std::size_t nTaken = ColumnsOf(strText) + kBetweenColumns + 2;
  if (nRoom < nTaken + kShortestBar || status.qwFrames == kFramesUnknown) return strText;
  return strText + kBetween + Bar(status, std::min(nRoom - nTaken, kLongestBar));
}

}  // namespace tool
