// SPDX-License-Identifier: Apache-2.0
#include "marks/BeyondEnd.h"

#include "base/TimeText.h"

namespace tool {

std::optional<std::string> BeyondEnd(std::uint64_t qwStart, std::uint64_t qwLength,
                                     const S_SoundEnd& end) {
  if (end.qwFrames == UINT64_MAX) return {};
  if (qwStart <= end.qwFrames && qwLength <= end.qwFrames - qwStart) return {};
  const std::uint64_t qwPlace = qwStart > end.qwFrames ? qwStart : qwStart + qwLength;
  return PlaceText(qwPlace, end.dwRate) + " is beyond the end of the sound at " +
         PlaceText(end.qwFrames, end.dwRate) + "; --anyway adds it nevertheless";
}

}  // namespace tool
