// SPDX-License-Identifier: Apache-2.0
#include "stream/CompressedStream.h"

#include <algorithm>
#include <optional>
#include <string>

#include "ByteReader.h"
#include "compressed/CompressedWav.h"
#include "compressed/WavTags.h"
#include "stream/AdpcmStream.h"
#include "stream/G711Stream.h"

namespace api {

namespace {

std::string WhyRefused(std::span<const std::uint8_t> format) {
  vcm::C_ByteReader reader(format);
  const std::uint16_t wTag = reader.U16();
  const std::uint16_t wChannels = reader.U16();
  const S_WavTag* const pTag = wavtags::Find(wTag);
  if (pTag == nullptr) return "format: tag " + std::to_string(wTag) + " is not supported";
  if (format.size() < wavtags::RecordBytes(*pTag, format)) return "format: it is cut";
  return wChannels == 0 ? "format: it has no channels" : "format: its blocks have no bytes";
}

void SetFormat(S_EncodedWav& wav, std::span<const std::uint8_t> format) {
  if (!wav.codecInfo.SetFormat(format)) {
    const bool bKnown = wavtags::Find(vcm::C_ByteReader(format).U16()) != nullptr;
    throw C_Failure(bKnown ? VOXPLAY_DAMAGED : VOXPLAY_UNSUPPORTED, WhyRefused(format));
  }
  wav.decoder = compressedwav::MakeDecoder(wav.codecInfo);
  if (wav.decoder) return;
  throw C_Failure(VOXPLAY_UNSUPPORTED,
                  "format: tag " + std::to_string(wav.codecInfo.GetFormatTag()) + " with " +
                      std::to_string(wav.codecInfo.GetPCMWAVEFORMAT().wBitsPerSample) +
                      " bits is not a compressed kind that is supported");
}

// What the bytes decode to. Like all sizes in RIFF, it has 32 bits.
std::uint32_t DecodedSize(const S_EncodedWav& wav, std::uint64_t qwEncoded) {
  std::optional<unsigned int> dwSize;
  if (qwEncoded <= std::numeric_limits<std::uint32_t>::max()) {
    dwSize = wav.decoder->GetDecodedSize(wav.codecInfo, static_cast<unsigned int>(qwEncoded));
  }
  if (dwSize) return *dwSize;
  throw C_Failure(VOXPLAY_TOO_LARGE,
                  "data: " + std::to_string(qwEncoded) + " bytes decode to 4 GiB or more");
}

void SetSize(S_EncodedWav& wav, const I_ByteSource& source, const S_ByteRange& data) {
  const std::optional<std::uint64_t> qwLength = source.Length();
  wav.qwAt = data.qwAt;
  wav.bLengthKnown = qwLength.has_value();
  const std::uint64_t qwThere =
      qwLength ? *qwLength - std::min(*qwLength, data.qwAt) : kToTheEnd - data.qwAt;
  const bool bToTheEnd = data.qwSize >= kToTheEnd - data.qwAt;
  if (!bToTheEnd) DecodedSize(wav, data.qwSize);
  if (bToTheEnd && !qwLength) return;
  wav.qwSize = std::min(qwThere, data.qwSize);
  const std::uint32_t dwDecoded = DecodedSize(wav, *wav.qwSize);
  if (compressedwav::IsAccountedFor(dwDecoded, *wav.qwSize)) return;
  throw C_Failure(VOXPLAY_DAMAGED, "data: " + std::to_string(*wav.qwSize) +
                                       " bytes are too few for the " + std::to_string(dwDecoded) +
                                       " bytes that the format says they decode to");
}

}  // namespace

C_SampleStreamPtr OpenCompressedStream(I_ByteSource& source, S_ByteRange data,
                                       std::span<const std::uint8_t> format) {
  S_EncodedWav wav;
  SetFormat(wav, format);
  SetSize(wav, source, data);
  if (!wavtags::Find(wav.codecInfo.GetFormatTag())->bBlocks) {
    return std::make_unique<C_G711Stream>(source, std::move(wav));
  }
  return std::make_unique<C_AdpcmStream>(source, std::move(wav));
}

}  // namespace api
