// SPDX-License-Identifier: Apache-2.0
#include "batch/TargetNames.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "batch/SoundNames.h"
#include "batch/Targets.h"

namespace tool {
namespace {

// With one folder more of the path. False where there is none.
bool KeepMore(S_ListedFile& file) {
  if (file.nKept < 2) return false;
  file.nKept = file.strPath.rfind('/', file.nKept - 2) + 1;
  return true;
}

}  // namespace

C_TargetNames::C_TargetNames(std::string strFolder, std::string_view extension)
    : m_strFolder(std::move(strFolder)), m_strExtension(extension) {}

std::string C_TargetNames::Name(const S_ListedFile& file, unsigned nChoice) const {
  const unsigned nMore = nChoice / 2;
  S_ListedFile wide = nMore == 0 ? file : PlainFile(file);
  for (unsigned i = 0; i < nMore; ++i) {
    if (!KeepMore(wide)) return "";
  }
  const bool bWholeName = nChoice % 2 == 1;
  const std::string strName = bWholeName ? std::string(wide.Kept()) + m_strExtension
                                         : WithExtension(wide.Kept(), m_strExtension);
  return (std::filesystem::path(m_strFolder) / strName).string();
}

S_ListedFile PlainFile(const S_ListedFile& file) {
  const std::string strPath = PlainPath(file.strPath);
  const std::string strKept = std::filesystem::path(file.Kept()).lexically_normal().string();
  return {strPath, strPath.size() - std::min(strPath.size(), strKept.size())};
}

}  // namespace tool
