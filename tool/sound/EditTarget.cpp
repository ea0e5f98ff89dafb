// SPDX-License-Identifier: Apache-2.0
#include "sound/EditTarget.h"

#include <filesystem>
#include <system_error>

#include "base/ReplacedFile.h"
#include "base/SentFile.h"
#include "sound/SoundInput.h"

namespace tool {

std::unique_ptr<I_NewFile> MakeEdited(const std::string& strFile, const S_EditTarget& target) {
  if (target.strOutput == kStandardStream) return std::make_unique<C_SentFile>();
  if (target.strOutput.empty()) return std::make_unique<C_ReplacedFile>(strFile, true);
  return std::make_unique<C_ReplacedFile>(target.strOutput, target.bForce);
}

bool IsInPlace(const std::string& strFile, const S_EditTarget& target) {
  if (target.strOutput.empty()) return true;
  std::error_code error;
  return std::filesystem::equivalent(strFile, target.strOutput, error) && !error;
}

std::optional<C_FileLock> LockEdited(const std::string& strFile, const S_EditTarget& target) {
  std::optional<C_FileLock> lock;
  if (strFile != kStandardStream && IsInPlace(strFile, target)) lock.emplace(strFile);
  return lock;
}

}  // namespace tool
