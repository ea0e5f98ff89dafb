// SPDX-License-Identifier: Apache-2.0
#include "batch/BatchState.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "batch/DurationText.h"

namespace tool {
namespace {

constexpr std::size_t kBarColumns = 20;
// Before, a guess would only jump about.
constexpr double kSecondsToGuess = 1.0;

std::string Files(std::uint64_t qwCount) {
  return std::to_string(qwCount) + (qwCount == 1 ? " file" : " files");
}

std::string Bar(double dPart) {
  const auto nFull = static_cast<std::size_t>(std::clamp(dPart, 0.0, 1.0) * kBarColumns);
  return '[' + std::string(nFull, '=') + std::string(kBarColumns - nFull, ' ') + ']';
}

std::string CountText(const S_BatchState& state, double dPart, const std::string& strFailed) {
  if (state.qwAll == 1) return std::to_string(static_cast<int>(dPart * 100.0)) + " %";
  std::string strText = std::to_string(state.Ended()) + "/" + Files(state.qwAll);
  if (state.qwFailed != 0) strText += " (" + std::to_string(state.qwFailed) + ' ' + strFailed + ')';
  return strText;
}

// A file may be both.
std::string DamageText(const S_BatchState& state) {
  if (state.qwCut == 0) return std::to_string(state.qwDamaged) + " with damaged frames";
  const std::string strCut = std::to_string(state.qwCut) + " cut";
  if (state.qwDamaged == 0) return strCut;
  return std::to_string(state.qwDamaged) + " with damaged frames, " + strCut;
}

std::string SpeedText(double dRatio) {
  return std::to_string(static_cast<std::uint64_t>(std::fmin(std::round(dRatio), 1e9))) +
         " x real time";
}

// Parts that stand beside each other, the most important one first; those that do not fit are left
// out.
std::string Fitting(const std::vector<std::string>& parts, std::size_t nColumns) {
  std::string strText;
  for (const std::string& strPart : parts) {
    const std::size_t nMore = strPart.size() + (strText.empty() ? 0 : 2);
    if (strText.size() + nMore > nColumns) break;
    strText += (strText.empty() ? "" : ", ") + strPart;
  }
  return strText;
}

}  // namespace

void S_BatchState::Count(const S_FileResult& result) {
  if (result.eState != tagFileState::FILE_SKIPPED) dSoundSeconds += result.Seconds();
  switch (result.eState) {
    case tagFileState::FILE_DONE:
      ++qwDone;
      if (result.qwDamaged != 0) ++qwDamaged;
      if (result.bCut) ++qwCut;
      break;
    case tagFileState::FILE_SKIPPED:
      ++qwSkipped;
      break;
    case tagFileState::FILE_FAILED:
      ++qwFailed;
      break;
  }
}

std::string SummaryText(const S_BatchState& state, const std::string& strDone,
                        const std::string& strFailed) {
  std::string strText = Files(state.qwAll) + ": " + std::to_string(state.qwDone) + ' ' + strDone;
  if (state.qwDamaged + state.qwCut != 0) strText += " (" + DamageText(state) + ')';
  if (state.qwSkipped != 0) strText += ", " + std::to_string(state.qwSkipped) + " skipped";
  if (state.qwFailed != 0) strText += ", " + std::to_string(state.qwFailed) + ' ' + strFailed;
  return strText + "; " + DurationText(state.dSoundSeconds) + " of sound in " +
         DurationText(state.dSeconds);
}

std::string StoppedText(const std::string& strHow, const S_BatchState& state,
                        const std::string& strDone) {
  return strHow + ": " + std::to_string(state.qwDone) + " of " + Files(state.qwAll) + ' ' + strDone;
}

std::string ProgressText(const S_BatchState& state, double dBegun, double dBegunSeconds,
                         std::size_t nColumns, const std::string& strFailed) {
  const double dEnded = static_cast<double>(state.Ended()) + dBegun;
  const double dPart = state.qwAll == 0 ? 0.0 : dEnded / static_cast<double>(state.qwAll);
  std::vector<std::string> parts = {CountText(state, dPart, strFailed)};
  // Those that were skipped have taken no time, and those that are left will.
  const double dWorked = dEnded - static_cast<double>(state.qwSkipped);
  if (state.dSeconds >= kSecondsToGuess && dWorked > 0.0) {
    parts.push_back(SpeedText((state.dSoundSeconds + dBegunSeconds) / state.dSeconds));
    const double dFiles = std::fmax(static_cast<double>(state.qwAll) - dEnded, 0.0);
    parts.push_back(DurationText(std::round(state.dSeconds * dFiles / dWorked)) + " left");
  }
  // A line that fills the last column would wrap.
  const std::size_t nRoom = std::max<std::size_t>(nColumns, 1) - 1;
  const std::string strText = Fitting(parts, nRoom);
  const std::string strBar = Bar(dPart) + ' ';
  return strBar.size() + strText.size() <= nRoom ? strBar + strText : strText;
}

}  // namespace tool
