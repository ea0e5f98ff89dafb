// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sndfile.h>

#include <optional>

#include "FileDescriptor.h"
#include "MpegSound.h"

namespace toolbox {

// What a file holds, in the terms of the audio file service.
struct S_AudioFileFormat {
  AudioStreamBasicDescription desc{};
  UInt64 qwPackets = 0;
};

// Packets are MPEG frames.
[[nodiscard]] S_AudioFileFormat DescribeMpeg(const C_MpegSound& sound);

// Describes any other opened file. Packets of PCM and G.711 are frames, of block codecs in WAV
// files whole blocks; of every other codec the decoded frames are counted. Empty when the file
// contradicts itself.
[[nodiscard]] std::optional<S_AudioFileFormat> DescribeAudioFile(SNDFILE* pSound,
                                                                 const SF_INFO& info,
                                                                 const C_FileDescriptor& file);

}  // namespace toolbox
