// SPDX-License-Identifier: Apache-2.0
#include "compressed/WavTags.h"

#include <algorithm>
#include <array>

#include "ByteReader.h"
#include "compressed/DVIAdpcmCodec.h"
#include "compressed/G711Codec.h"
#include "compressed/MSAdpcmCodec.h"
#include "compressed/WavFileCodecInfo.h"

namespace wavtags {
namespace {

constexpr std::size_t kPairBytes = 4;
constexpr std::size_t kCountBytes = 2;

template <typename Decoder>
std::unique_ptr<C_MSAdpcmCodec> Make(unsigned short /*wBits*/) {
  return std::make_unique<Decoder>();
}

std::unique_ptr<C_MSAdpcmCodec> MakeDvi(unsigned short wBits) {
  if (wBits == 4) return std::make_unique<C_DVIAdpcmCodec>();
  if (wBits == 3) return std::make_unique<C_DVIAdpcm3BitCodec>();
  return nullptr;
}

// Kept: A-law and mu-law have no coding type of their own and leave it as it was, 0 in a new
// object. Callers read it only to find out about the blocks of ADPCM. Pinned by
// G711_LeavesTheCodingTypeAsItWas.
constexpr auto kTags = std::to_array<S_WavTag>({
    {WAVE_TAG_PCM, S_PcmFormatRecord::kBytes, false, false, WAV_CODING_LINEAR, nullptr},
    {WAVE_TAG_MS_ADPCM, C_WavFileCodecInfo::kMSAdpcmHeadBytes, true, true, WAV_CODING_MS_ADPCM,
     &Make<C_MSAdpcmCodec>},
    {WAVE_TAG_ALAW, S_PcmFormatRecord::kBytes, false, false, std::nullopt, &Make<C_ALawCodec>},
    {WAVE_TAG_MULAW, S_PcmFormatRecord::kBytes, false, false, std::nullopt, &Make<C_MuLawCodec>},
    {WAVE_TAG_DVI_ADPCM, C_WavFileCodecInfo::kDviAdpcmBytes, false, true, WAV_CODING_DVI_ADPCM,
     &MakeDvi},
});

}  // namespace

const S_WavTag* Find(unsigned short wFormatTag) noexcept {
  const auto* const pTag = std::ranges::find(kTags, wFormatTag, &S_WavTag::eTag);
  return pTag == kTags.end() ? nullptr : pTag;
}

std::size_t RecordBytes(const S_WavTag& tag, std::span<const std::uint8_t> record) noexcept {
  if (!tag.bCoefficients) return tag.cbHead;
  vcm::C_ByteReader reader(record);
  reader.Skip(tag.cbHead - kCountBytes);
  return tag.cbHead + kPairBytes * reader.U16();
}

}  // namespace wavtags
