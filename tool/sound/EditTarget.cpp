// SPDX-License-Identifier: Apache-2.0
#include "sound/EditTarget.h"

#include "base/ReplacedFile.h"
#include "base/SentFile.h"
#include "sound/SoundInput.h"

namespace tool {

std::unique_ptr<I_NewFile> MakeEdited(const std::string& strFile, const S_EditTarget& target) {
  if (target.strOutput == kStandardStream) return std::make_unique<C_SentFile>();
  if (target.strOutput.empty()) return std::make_unique<C_ReplacedFile>(strFile, true);
  return std::make_unique<C_ReplacedFile>(target.strOutput, target.bForce);
}

}  // namespace tool
