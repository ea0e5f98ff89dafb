// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "reader/Opened.h"
#include "reader/RiffSound.h"

namespace api {

S_Opened OpenWav(I_ByteSource& source, std::uint32_t /*dwFlags*/) {
  S_RiffSound sound = ReadRiffSound(source, E_RiffForm::Wave);
  const bool bVemd = sound.contents.form == S_FourCC{'V', 'E', 'M', 'D'};
  S_Opened opened;
  opened.info = StoredInfo(sound, bVemd ? VOXPLAY_CONTAINER_VEMD : VOXPLAY_CONTAINER_WAV);
  opened.notes =
      ReadRiffNotes(std::move(sound.further), E_RiffForm::Wave, sound.contents.bCutShort);
  opened.info.is_cut = sound.contents.bLacksBytes ? 1 : 0;
  opened.stream = OpenStored(source, sound);
  opened.chunks = std::move(sound.contents.chunks);
  return opened;
}

}  // namespace api
