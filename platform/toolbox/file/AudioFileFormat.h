// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sndfile.h>

#include <optional>

#include "file/FileDescriptor.h"
#include "file/MpegSound.h"

namespace toolbox {

// What a file holds, in terms of the audio file service.
struct S_AudioFileFormat {
  AudioStreamBasicDescription desc{};
  UInt64 qwPackets = 0;
};

// Whether the file, after any ID3 tags, begins like one of the kinds that the audio file service
// opens: RIFF with its big-endian and 64-bit forms, AIFF, AU, CAF, FLAC, Ogg, and SPHERE, the
// format of the ".wav" files of speech corpora. The file library knows more kinds, but reports
// damage in some of them on standard output.
[[nodiscard]] bool IsKnownSound(const C_FileDescriptor& file);

// True when the frame count of an opened file is only what the file claims, false when it comes
// from the bytes that the file holds.
[[nodiscard]] bool ClaimsItsFrames(const SF_INFO& info);

// Describes an MPEG stream. Its packets are MPEG frames.
[[nodiscard]] S_AudioFileFormat DescribeMpeg(const C_MpegSound& sound);

// Describes any other opened file. A packet is one frame of PCM and G.711, one whole block of a
// block codec in a WAV file, and one decoded frame of every other codec. Empty when the file
// contradicts itself.
[[nodiscard]] std::optional<S_AudioFileFormat> DescribeAudioFile(SNDFILE* pSound,
                                                                 const SF_INFO& info,
                                                                 const C_FileDescriptor& file);

}  // namespace toolbox
