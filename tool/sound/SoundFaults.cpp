// SPDX-License-Identifier: Apache-2.0
#include "sound/SoundFaults.h"

#include "base/TimeText.h"
#include "sound/WholeSound.h"

namespace tool {
namespace {

std::string HeldText(std::uint64_t qwFrames, std::uint64_t qwClaimed) {
  if (qwFrames < qwClaimed) {
    return CountText(qwFrames) + " of " + CountedText(qwClaimed, "frame") + " are";
  }
  return CountedText(qwFrames, "frame") + (qwFrames == 1 ? " is" : " are");
}

}  // namespace

bool IsCutAfter(const I_SoundInput& sound, std::uint64_t qwFrames) {
  return sound.IsCut() || qwFrames < ClaimedFrames(sound.Info());
}

std::string FaultLine(const std::string& strName, const I_SoundInput& sound, std::uint64_t qwFrames,
                      std::string_view done) {
  std::string strText;
  if (sound.DamagedFrames() != 0) {
    strText =
        CountText(sound.DamagedFrames()) + " of " + CountedText(qwFrames, "frame") + " are damaged";
  }
  if (IsCutAfter(sound, qwFrames)) {
    strText += strText.empty() ? "" : "; ";
    strText += "the file is cut: " + HeldText(qwFrames, ClaimedFrames(sound.Info())) +
               " there, and " + std::string(done);
  }
  return strText.empty() ? "" : strName + ": " + strText;
}

}  // namespace tool
