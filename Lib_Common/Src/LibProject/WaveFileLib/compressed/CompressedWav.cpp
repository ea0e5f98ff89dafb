// SPDX-License-Identifier: Apache-2.0
#include "compressed/CompressedWav.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "ByteReader.h"
#include "StdioFile.h"
#include "compressed/DVIAdpcmCodec.h"
#include "compressed/G711Codec.h"

namespace compressedwav {

namespace {

// No code is shorter than three bits, and each becomes two bytes.
constexpr std::uint64_t kMaxExpansion = 6;

// The part of a record that tells its length.
std::size_t HeadBytes(unsigned short wFormatTag) {
  if (wFormatTag == WAVE_TAG_MS_ADPCM) return C_WavFileCodecInfo::kMSAdpcmHeadBytes;
  if (wFormatTag == WAVE_TAG_DVI_ADPCM) return C_WavFileCodecInfo::kDviAdpcmBytes;
  return S_PcmFormatRecord::kBytes;
}

std::size_t CoefficientBytes(const std::vector<std::uint8_t>& head) {
  vcm::C_ByteReader reader(head);
  reader.Skip(C_WavFileCodecInfo::kDviAdpcmBytes);
  return std::size_t{4} * reader.U16();
}

bool IsAccountedFor(std::uint64_t qwPcm, std::uint64_t qwEncoded) {
  const std::uint64_t qwMost = qwEncoded * kMaxExpansion;
  return qwPcm <= qwMost || qwPcm - qwMost <= kMaxSilentBytes;
}

}  // namespace

std::unique_ptr<C_MSAdpcmCodec> MakeDecoder(const C_WavFileCodecInfo& codecInfo) {
  const unsigned short wBits = codecInfo.GetPCMWAVEFORMAT().wBitsPerSample;
  switch (codecInfo.GetFormatTag()) {
    case WAVE_TAG_MS_ADPCM:
      return std::make_unique<C_MSAdpcmCodec>();
    case WAVE_TAG_ALAW:
      return std::make_unique<C_ALawCodec>();
    case WAVE_TAG_MULAW:
      return std::make_unique<C_MuLawCodec>();
    case WAVE_TAG_DVI_ADPCM:
      if (wBits == 4) return std::make_unique<C_DVIAdpcmCodec>();
      if (wBits == 3) return std::make_unique<C_DVIAdpcm3BitCodec>();
      return nullptr;
    default:
      return nullptr;
  }
}

std::optional<C_WavFileCodecInfo> ReadFormat(std::FILE* pFile, std::uint64_t qwPosition,
                                             unsigned short wFormatTag) {
  std::vector<std::uint8_t> record(HeadBytes(wFormatTag));
  if (!vcm::SeekTo(pFile, qwPosition) || !vcm::ReadExact(pFile, record)) return std::nullopt;
  if (wFormatTag == WAVE_TAG_MS_ADPCM) {
    const std::size_t cbHead = record.size();
    record.resize(cbHead + CoefficientBytes(record));
    if (!vcm::ReadExact(pFile, std::span(record).subspan(cbHead))) return std::nullopt;
  }
  C_WavFileCodecInfo codecInfo;
  if (!codecInfo.SetFormat(record) || codecInfo.GetFormatTag() != wFormatTag) return std::nullopt;
  return codecInfo;
}

std::optional<std::vector<std::uint8_t>> ReadPayload(std::FILE* pFile, std::uint64_t qwPosition,
                                                     unsigned int dwLength) {
  const std::optional<std::uint64_t> qwSize = vcm::SizeAndSeekEnd(pFile);
  if (!qwSize || !vcm::SeekTo(pFile, qwPosition)) return std::nullopt;
  const std::uint64_t qwHeld = *qwSize - std::min(*qwSize, qwPosition);
  std::vector<std::uint8_t> payload(
      static_cast<std::size_t>(std::min<std::uint64_t>(qwHeld, dwLength)));
  payload.resize(vcm::ReadSome(pFile, payload));
  return payload;
}

bool Decode(const C_WavFileCodecInfo& codecInfo, const std::vector<std::uint8_t>& encoded,
            I_WavData& wavData) {
  const std::unique_ptr<C_MSAdpcmCodec> decoder = MakeDecoder(codecInfo);
  if (!decoder) return false;
  const auto dwEncoded = static_cast<unsigned int>(encoded.size());
  const std::optional<unsigned int> dwPcm = decoder->GetDecodedSize(codecInfo, dwEncoded);
  if (!dwPcm || !IsAccountedFor(*dwPcm, dwEncoded)) return false;
  unsigned char* pbyPcm = wavData.AllocBuffer(*dwPcm);
  // A block may hold fewer samples than it counts as: the others are silence.
  std::fill_n(pbyPcm, *dwPcm, static_cast<unsigned char>(0));
  const bool bDecoded = decoder->Decode(codecInfo, encoded.data(), dwEncoded,
                                        reinterpret_cast<short*>(pbyPcm), *dwPcm);
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  wavData.SetWavInfoData(pcm.dwSamplesPerSec, *dwPcm, pcm.wChannels, 16, 16, true);
  return bDecoded;
}

}  // namespace compressedwav
