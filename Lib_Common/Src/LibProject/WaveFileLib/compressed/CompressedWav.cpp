// SPDX-License-Identifier: Apache-2.0
#include "compressed/CompressedWav.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "StdioFile.h"
#include "compressed/WavTags.h"

namespace compressedwav {

namespace {

// No code is shorter than three bits, and each becomes two bytes.
constexpr std::uint64_t kMaxExpansion = 6;

bool IsAccountedFor(std::uint64_t qwPcm, std::uint64_t qwEncoded) {
  const std::uint64_t qwMost = qwEncoded * kMaxExpansion;
  return qwPcm <= qwMost || qwPcm - qwMost <= kMaxSilentBytes;
}

}  // namespace

std::unique_ptr<C_MSAdpcmCodec> MakeDecoder(const C_WavFileCodecInfo& codecInfo) {
  const S_WavTag* const pTag = wavtags::Find(codecInfo.GetFormatTag());
  if (pTag == nullptr || pTag->pfnMakeDecoder == nullptr) return nullptr;
  return pTag->pfnMakeDecoder(codecInfo.GetPCMWAVEFORMAT().wBitsPerSample);
}

std::optional<C_WavFileCodecInfo> ReadFormat(std::FILE* pFile, std::uint64_t qwPosition,
                                             unsigned short wFormatTag) {
  const S_WavTag* const pTag = wavtags::Find(wFormatTag);
  if (pTag == nullptr || !vcm::SeekTo(pFile, qwPosition)) return std::nullopt;
  std::vector<std::uint8_t> record(pTag->cbHead);
  if (!vcm::ReadExact(pFile, record)) return std::nullopt;
  record.resize(wavtags::RecordBytes(*pTag, record));
  if (!vcm::ReadExact(pFile, std::span(record).subspan(pTag->cbHead))) return std::nullopt;
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
  const auto cbRead = vcm::ReadSome(pFile, payload);
  if (!cbRead) return std::nullopt;
  payload.resize(*cbRead);
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
  // A block may hold fewer samples than it counts as; the missing samples are silence.
  std::fill_n(pbyPcm, *dwPcm, static_cast<unsigned char>(0));
  // Allocated memory is aligned for every type.
  auto* const pSamples = static_cast<short*>(static_cast<void*>(pbyPcm));
  const bool bDecoded = decoder->Decode(codecInfo, encoded.data(), dwEncoded, pSamples, *dwPcm);
  const S_PcmFormatRecord pcm = codecInfo.GetPCMWAVEFORMAT();
  wavData.SetWavInfoData(pcm.dwSamplesPerSec, *dwPcm, pcm.wChannels, 16, 16, true);
  return bDecoded;
}

}  // namespace compressedwav
