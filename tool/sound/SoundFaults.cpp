// SPDX-License-Identifier: Apache-2.0
#include "sound/SoundFaults.h"

#include "sound/WholeSound.h"

namespace tool {

bool IsCutAfter(const I_SoundInput& sound, std::uint64_t qwFrames) {
  return sound.IsCut() || qwFrames < ClaimedFrames(sound.Info());
}

std::string DamagedLine(const std::string& strName, std::uint64_t qwDamaged,
                        std::uint64_t qwFrames) {
  return strName + ": " + std::to_string(qwDamaged) + " of " + std::to_string(qwFrames) +
         " frames are damaged";
}

std::string CutLine(const std::string& strName, const I_SoundInput& sound, std::uint64_t qwFrames,
                    std::string_view done) {
  const std::string strCut = strName + ": the file is cut: ";
  if (qwFrames >= ClaimedFrames(sound.Info())) return strCut + "its end is missing";
  return strCut + std::to_string(qwFrames) +
         (qwFrames == 1 ? " frame is there, and " : " frames are there, and ") + std::string(done);
}

}  // namespace tool
