// SPDX-License-Identifier: Apache-2.0
#include "reader/CodedStream.h"

#include <utility>

#include "interface/AudioFileType.h"
#include "stream/HeronStream.h"
#include "stream/KestrelStream.h"

namespace api {
namespace {

constexpr std::uint64_t kLongestClaim = std::uint64_t{1} << 32U;

void Describe(voxplay_info& info, voxplay_codec eCodec, std::uint32_t dwSampleRate) {
  info.codec = eCodec;
  info.sample_rate = dwSampleRate;
  info.channels = 1;
}

}  // namespace

S_ByteRange RestOf(const I_ByteSource& source, std::uint64_t qwAt) {
  const auto qwLength = source.Length();
  return Held(source, {qwAt, qwLength ? *qwLength : kLongestClaim});
}

void OpenKestrel(I_ByteSource& source, const S_ByteRange& range, std::uint32_t dwSampleRate,
                 S_Opened& opened) {
  S_KestrelStream kestrel = OpenKestrelStream(source, range);
  Describe(opened.info, VOXPLAY_CODEC_KESTREL, dwSampleRate);
  opened.info.bit_rate = kestrel.dwBitRate;
  opened.info.claimed_frames = kestrel.qwClaimedFrames;
  opened.info.is_cut = kestrel.bCut ? 1 : 0;
  opened.stream = std::move(kestrel.stream);
}

void OpenHeron(I_ByteSource& source, const S_ByteRange& range, std::uint32_t dwSampleRate,
               S_Opened& opened) {
  S_HeronStream heron = OpenHeronStream(source, range, dwSampleRate);
  Describe(opened.info, VOXPLAY_CODEC_HERON, dwSampleRate);
  opened.info.bits_per_sample = static_cast<std::uint32_t>(heron.nBitDepth);
  opened.info.bit_rate = dwSampleRate * opened.info.bits_per_sample;
  opened.info.claimed_frames = heron.qwClaimedFrames;
  opened.info.is_cut = heron.bCut ? 1 : 0;
  opened.stream = std::move(heron.stream);
}

void OpenStreamOfType(I_ByteSource& source, std::uint32_t dwType, const S_ByteRange& range,
                      std::uint32_t dwSampleRate, S_Opened& opened) {
  if (kHeronTypes.Has(dwType)) {
    OpenHeron(source, range, dwSampleRate, opened);
  } else {
    OpenKestrel(source, range, dwSampleRate, opened);
  }
}

}  // namespace api
