// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sndfile.h>

#include <optional>

#include "file/FileDescriptor.h"
#include "file/MpegSound.h"

namespace toolbox {

// What a file holds, in the terms of the audio file service.
struct S_AudioFileFormat {
  AudioStreamBasicDescription desc{};
  UInt64 qwPackets = 0;
};

// Whether the file, behind ID3 tags, begins like one of the kinds that the audio file service
// opens: RIFF and its 64-bit forms, AIFF, AU, CAF, FLAC, Ogg, and SPHERE, in which speech corpora
// have their ".wav" files. The file library knows more, and tells standard output about damage in
// some of them.
[[nodiscard]] bool IsKnownSound(const C_FileDescriptor& file);

// True when the frames of an opened file are what it claims, false when they are counted from the
// bytes that it holds.
[[nodiscard]] bool ClaimsItsFrames(const SF_INFO& info);

// Packets are MPEG frames.
[[nodiscard]] S_AudioFileFormat DescribeMpeg(const C_MpegSound& sound);

// Describes any other opened file. Packets of PCM and G.711 are frames, of block codecs in WAV
// files whole blocks; of every other codec the decoded frames are counted. Empty when the file
// contradicts itself.
[[nodiscard]] std::optional<S_AudioFileFormat> DescribeAudioFile(SNDFILE* pSound,
                                                                 const SF_INFO& info,
                                                                 const C_FileDescriptor& file);

}  // namespace toolbox
