// SPDX-License-Identifier: Apache-2.0
#include "batch/TargetChoice.h"

#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "base/Failure.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

bool IsFolder(const std::string& strPath) {
  struct stat status {};
  return stat(strPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void CheckOneTarget(const std::string& strFile, const C_FileList& list) {
  if (strFile.empty()) throw C_UsageFailure("voxtool: -o FILE or -d DIR has to say what to write");
  if (IsFolder(strFile)) throw C_UsageFailure(strFile, "is a folder", "-d writes into it");
  if (list.Files().size() + list.Failures() > 1) {
    throw C_UsageFailure("voxtool: several files need -d DIR in place of -o");
  }
}

void CheckManyTargets(const C_FileList& list, const PFN_TargetOf& fnTargetOf) {
  const auto& files = list.Files();
  if (std::ranges::find(files, kStandardStream, &S_ListedFile::strPath) != files.end()) {
    throw C_UsageFailure("voxtool: standard input has no name, so it needs -o in place of -d");
  }
  RefuseClashes(files, fnTargetOf);
}

}  // namespace

PFN_TargetOf ChooseTargets(const S_TargetOptions& options, std::string_view extension,
                           const C_FileList& list) {
  if (!options.IsMany()) {
    CheckOneTarget(options.strFile, list);
    return [strFile = options.strFile](const S_ListedFile&) { return strFile; };
  }
  PFN_TargetOf fnTargetOf = [strFolder = options.strFolder,
                             strExtension = std::string(extension)](const S_ListedFile& file) {
    return TargetBelow(strFolder, file, strExtension);
  };
  CheckManyTargets(list, fnTargetOf);
  return fnTargetOf;
}

}  // namespace tool
