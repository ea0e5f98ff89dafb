// SPDX-License-Identifier: Apache-2.0
#include "plot/PlotTargets.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>

#include "base/Failure.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

std::string Extension(const std::string& strPath) {
  std::string strText = std::filesystem::path(strPath).extension().string();
  std::transform(strText.begin(), strText.end(), strText.begin(),
                 [](unsigned char chPart) { return static_cast<char>(std::tolower(chPart)); });
  return strText;
}

std::string TargetIn(const std::string& strFolder, const std::string& strSource, bool bSvg) {
  const std::string strName =
      strSource == kStandardStream ? "stdin" : std::filesystem::path(strSource).stem().string();
  return (std::filesystem::path(strFolder) / (strName + (bSvg ? ".svg" : ".png"))).string();
}

void RefuseDoubles(const S_PlotPlaces& places, const std::vector<std::string>& targets) {
  std::map<std::string, std::string> sources;
  for (std::size_t n = 0; n < targets.size(); ++n) {
    const auto [first, bNew] = sources.emplace(targets[n], places.sources[n]);
    if (bNew) continue;
    throw C_UsageFailure(targets[n], "would be the picture of two sounds",
                         first->second + " and " + places.sources[n]);
  }
}

}  // namespace

bool WantsSvg(const S_PlotPlaces& places) {
  if (!places.strFormat.empty()) return places.strFormat == "svg";
  if (places.strOut.empty() || places.strOut == kStandardStream) return false;
  const std::string strExtension = Extension(places.strOut);
  if (strExtension == ".svg" || strExtension == ".png") return strExtension == ".svg";
  throw C_UsageFailure(places.strOut, "its name tells no format",
                       "let it end in .png or .svg, or say --format");
}

std::vector<std::string> PlotTargets(const S_PlotPlaces& places, bool bSvg) {
  if (places.strOut.empty() == places.strFolder.empty()) {
    throw C_UsageFailure("plot", "where the picture goes is not said", "give either -o or -d");
  }
  if (!places.strOut.empty() && places.sources.size() > 1) {
    throw C_UsageFailure("-o", "names one picture", "for several sounds give -d");
  }
  if (!places.strOut.empty()) return {places.strOut};
  std::vector<std::string> targets;
  for (const std::string& strSource : places.sources) {
    targets.push_back(TargetIn(places.strFolder, strSource, bSvg));
  }
  RefuseDoubles(places, targets);
  return targets;
}

}  // namespace tool
