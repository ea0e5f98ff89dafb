// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string_view>
#include <utility>

#include "base/Failure.h"
#include "base/Words.h"
#include "compressed/WavTags.h"
#include "interface/AudioFileType.h"
#include "reader/CodedStream.h"
#include "reader/Opened.h"
#include "reader/RiffSound.h"

namespace api {
namespace {

// The first "vdat" chunk counts; the last "data" does.
const S_FoundChunk* FindStream(const S_RiffContents& contents) {
  constexpr std::string_view kID = "vdat";
  const auto found = std::ranges::find_if(contents.chunks, [=](const S_FoundChunk& chunk) {
    return std::ranges::equal(chunk.id, kID);
  });
  return found == contents.chunks.end() ? nullptr : &*found;
}

// An input of unknown length has a chunk that claims to be whole, if another one follows it.
bool HasStream(const I_ByteSource& source, const S_RiffContents& contents) {
  const S_FoundChunk* const pStream = FindStream(contents);
  if (pStream == nullptr || pStream->payload.qwSize == 0) return false;
  if (!source.Length()) return pStream != &contents.chunks.back();
  return pStream->qwHeld == pStream->payload.qwSize;
}

void FillHeaders(const S_CodecRecord& record, voxplay_headers& headers) {
  headers.has_vafm = 1;
  headers.vafm_version = record.wVersion;
  headers.vafm_type = record.wType;
  headers.vafm_sample_rate = record.wSampleRate;
  headers.vafm_bit_rate = record.dwBitRate;
  headers.vafm_channels = record.byChannels;
  headers.vafm_platform = record.byPlatform;
}

void CheckWhole(const S_FoundChunk* pStream) {
  if (pStream == nullptr) {
    throw C_Failure(VOXPLAY_UNSUPPORTED, "vdat chunk: the file has no stream beside its PCM");
  }
  if (pStream->payload.qwSize == 0) throw C_Failure(VOXPLAY_DAMAGED, "vdat chunk: it is empty");
  if (pStream->qwHeld < pStream->payload.qwSize) {
    throw C_Failure(VOXPLAY_DAMAGED, "vdat chunk: the file ends within it");
  }
}

bool OpensAsHeron(I_ByteSource& source, const S_ByteRange& range, std::uint32_t dwSampleRate,
                  S_Opened& opened) {
  try {
    OpenHeron(source, range, dwSampleRate, opened);
    return true;
  } catch (const C_Failure& failure) {
    if (failure.Status() == VOXPLAY_CANNOT_READ) throw;
    return false;
  }
}

// A file that names no type of ours, or none at all, is asked for both kinds of streams.
void OpenStream(I_ByteSource& source, const S_RiffSound& sound, S_Opened& opened) {
  if (!source.CanGoBack()) {
    throw C_Failure(VOXPLAY_CANNOT_SEEK, "vdat chunk: the input only goes forward");
  }
  const S_FoundChunk* const pStream = FindStream(sound.contents);
  CheckWhole(pStream);
  const S_ByteRange range = pStream->payload;
  const std::uint32_t dwType = sound.codecRecord ? sound.codecRecord->wType : 0U;
  const std::uint32_t dwSampleRate = sound.format.dwSampleRate;
  if (kHeronTypes.Has(dwType) || kKestrelTypes.Has(dwType)) {
    OpenStreamOfType(source, dwType, range, dwSampleRate, opened);
  } else if (!OpensAsHeron(source, range, dwSampleRate, opened)) {
    OpenKestrel(source, range, dwSampleRate, opened);
  }
}

}  // namespace

S_Opened OpenVef(I_ByteSource& source, std::uint32_t dwFlags) {
  S_RiffSound sound = ReadRiffSound(source, E_RiffForm::Vef);
  if (sound.format.wTag != WAVE_TAG_PCM) {
    throw C_Failure(VOXPLAY_UNSUPPORTED, "fmt chunk: format tag " +
                                             words::Hex16(sound.format.wTag) +
                                             " is not supported in a VEF file");
  }
  S_Opened opened;
  opened.notes = ReadRiffNotes(std::move(sound.further), E_RiffForm::Vef, sound.contents.bCutShort);
  if ((dwFlags & VOXPLAY_READ_STREAM) != 0) {
    opened.info.container = VOXPLAY_CONTAINER_VEF;
    OpenStream(source, sound, opened);
  } else {
    opened.info = StoredInfo(sound, VOXPLAY_CONTAINER_VEF);
    opened.stream = OpenStored(source, sound);
  }
  if (sound.contents.bLacksBytes) opened.info.is_cut = 1;
  opened.info.has_stream = HasStream(source, sound.contents) ? 1 : 0;
  if (sound.codecRecord) FillHeaders(*sound.codecRecord, opened.headers);
  opened.chunks = std::move(sound.contents.chunks);
  return opened;
}

}  // namespace api
