// SPDX-License-Identifier: Apache-2.0
#include "sound/SoundFaults.h"

#include "base/TimeText.h"
#include "sound/WholeSound.h"

namespace tool {

bool IsCutAfter(const I_SoundInput& sound, std::uint64_t qwFrames) {
  return sound.IsCut() || qwFrames < ClaimedFrames(sound.Info());
}

std::string DamagedText(std::uint64_t qwDamaged, std::uint64_t qwFrames) {
  return CountText(qwDamaged) + " of " + CountedText(qwFrames, "frame") + " are damaged";
}

std::string CutText(const I_SoundInput& sound, std::uint64_t qwFrames, std::string_view done) {
  const std::string strCut = "the file is cut: ";
  const std::uint64_t qwClaimed = ClaimedFrames(sound.Info());
  if (qwFrames >= qwClaimed) return strCut + "its end is missing";
  return strCut + CountText(qwFrames) + " of " + CountedText(qwClaimed, "frame") +
         " are there, and " + std::string(done);
}

}  // namespace tool
