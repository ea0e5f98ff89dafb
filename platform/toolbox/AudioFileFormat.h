// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sndfile.h>

#include <optional>

#include "FileDescriptor.h"

namespace toolbox {

// What a file holds, in the terms of the audio file service.
struct S_AudioFileFormat {
  AudioStreamBasicDescription desc{};
  UInt64 qwPackets = 0;
};

// Describes an opened file. Packets of PCM and G.711 are frames, of block codecs in WAV files whole
// blocks, of MPEG files MPEG frames; of every other codec the decoded frames are counted. Empty
// when the file contradicts itself.
[[nodiscard]] std::optional<S_AudioFileFormat> DescribeAudioFile(SNDFILE* pSound,
                                                                 const SF_INFO& info,
                                                                 const C_FileDescriptor& file);

}  // namespace toolbox
