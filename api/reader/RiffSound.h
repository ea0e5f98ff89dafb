// SPDX-License-Identifier: Apache-2.0
//
// What the chunks of a RIFF sound file say, with the payloads of all but the samples in memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "notes/RiffNotes.h"
#include "riff/RiffScan.h"
#include "riff/WavFormat.h"
#include "source/ByteSource.h"
#include "stream/SampleStream.h"

namespace api {

// A "vafm" record; file/VefFileBase.h has its layout.
struct S_CodecRecord {
  std::uint16_t wVersion = 0;
  std::uint16_t wType = 0;
  std::uint16_t wSampleRate = 0;
  std::uint32_t dwBitRate = 0;
  std::uint8_t byChannels = 0;
  std::uint8_t byPlatform = 0;
};

struct S_RiffSound {
  S_RiffContents contents;
  S_WavFormat format;
  std::optional<S_CodecRecord> codecRecord;  // the first one that counts
  std::vector<S_HeldChunk> further;          // those that ReadRiffNotes is to see
};

// Chunks that say nothing of the sound take no more memory than this together.
inline constexpr std::uint64_t kMaxFurtherBytes = std::uint64_t{1} << 30U;

// The source is a RIFF or RF64 file. Of several formats the last one counts, and all of them must
// be right. Throws C_Failure, also when there is no format, or none before the samples in a source
// that only goes forward.
S_RiffSound ReadRiffSound(I_ByteSource& source, E_RiffForm eForm);

// The samples in "data"; without such a chunk there are none. Throws C_Failure when they cannot be
// read, and when more than 64 MiB of PCM are missing in a container of ours.
C_SampleStreamPtr OpenStored(I_ByteSource& source, const S_RiffSound& sound);

// The members of voxplay_info that the format tells.
voxplay_info StoredInfo(const S_RiffSound& sound, voxplay_container eContainer);

}  // namespace api
