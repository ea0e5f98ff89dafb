// SPDX-License-Identifier: Apache-2.0
#include "KestrelFile.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "KestrelCodec.h"
#include "RiffFile.h"
#include "SpHeader.h"
#include "StdioFile.h"
#include "VcmAssert.h"

namespace {

constexpr const char* kSource = "WaveFileLib/KestrelFile";
constexpr const char* kStreamChunk = "vdat";

// The bytes behind the SP header, all of them without one. Empty on failure.
std::vector<unsigned char> ReadStream(const char* pszFileName) {
  C_SpHeader header;
  const std::uint64_t qwStart = ReadSpHeader(&header, pszFileName) ? C_SpHeader::kBytes : 0;
  const auto file = vcm::OpenFile(pszFileName, "rb");
  if (!file) return {};
  const auto qwSize = vcm::SizeAndSeekEnd(file.get());
  if (!qwSize || *qwSize <= qwStart || !vcm::SeekTo(file.get(), qwStart)) return {};
  if (*qwSize - qwStart > std::numeric_limits<std::uint32_t>::max()) return {};
  std::vector<unsigned char> stream(static_cast<std::size_t>(*qwSize - qwStart));
  stream.resize(vcm::ReadSome(file.get(), stream));
  return stream;
}

}  // namespace

bool C_KestrelFile::CheckFormat(const char* pszFileName, bool bWithInfo) {
  if (bWithInfo) PrepareWavData();
  C_SpHeader header;
  if (!ReadSpHeader(&header, pszFileName) || header.GetID() != AUDIO_FILE_KESTREL) return false;
  m_eContainerKind = kSpHeader;
  if (bWithInfo) {
    PrepareWavData()->SetWavInfoData(header.GetFreq(), 0, 1, 16, 16, true);
    SetCodingType(AUDIO_FILE_KESTREL);
  }
  return true;
}

bool C_KestrelFile::LoadData(bool /*bKeepEncoded*/, const char* /*pszCodecOption*/,
                             PFN_DecodedData pfnData) {
  if (m_eContainerKind != kSpHeader) return false;
  C_KestrelCodec codec;
  return Decode(GetFileName(), codec, pfnData);
}

bool C_KestrelFile::WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                              PFN_CodecProgress pfnProgress, bool bForceEncode,
                              unsigned int /*dwCodecOption*/) {
  m_bForceEncode = bForceEncode;
  if (!bEncode || bWriteCodecHead) return false;
  S_Stream stream;
  if (!MakeStream(pfnProgress, &stream)) return false;
  // Kept: a bare stream, which CheckFormat does not take without a header; whoever wants to open
  // it prepends one. Pinned by WriteFile_WritesTheBareStreamWithoutAHeader.
  auto file = vcm::OpenFile(pszFileName, "wb");
  if (!file) return false;
  const bool bWritten = vcm::WriteExact(file.get(), {stream.pbyData, stream.dwLength});
  return vcm::CloseChecked(std::move(file)) && bWritten;
}

bool C_KestrelFile::WriteDataChunk(C_RiffFile* pRiffFile) {
  S_Stream stream;
  if (pRiffFile == nullptr || !MakeStream(nullptr, &stream)) return false;
  C_RiffChunk* pChunk = pRiffFile->AddChunk(kStreamChunk, stream.dwLength);
  if (pChunk == nullptr) return false;
  pChunk->SetData(stream.pbyData);
  return true;
}

bool C_KestrelFile::Decode(const char* pszFileName, C_KestrelCodec& codec,
                           PFN_DecodedData pfnData) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  I_AudioCodecParam* piParam = pIWavData->GetAudioCodecParam();
  VCM_ASSERT(piParam != nullptr, "Decode", kSource, __LINE__, "NULL != piParam");
  const auto stream = ReadStream(pszFileName);
  const auto dwLength = static_cast<unsigned int>(stream.size());
  if (!pIWavData->SetEncBuffer(stream.data(), dwLength)) return false;
  pIWavData->SetEncType(static_cast<tagAudioFileType>(GetCodingType()));
  return codec.LoadCodec(piParam->GetBitRate()) &&
         codec.Decode(stream.data(), dwLength, pIWavData, pfnData);
}

bool C_KestrelFile::Encode(I_WavData* pIMonoData, C_KestrelCodec& codec,
                           PFN_CodecProgress pfnProgress, S_Stream* pStream) {
  I_AudioCodecParam* piParam = GetAudioCodecParam();
  VCM_ASSERT(piParam != nullptr, "Encode", kSource, __LINE__, "NULL != piParam");
  const unsigned int dwBitRate = piParam->GetBitRate();
  unsigned char* pbyStream = nullptr;
  if (!codec.LoadCodec(dwBitRate)) return false;
  if (!codec.Encode(pIMonoData, dwBitRate, &pbyStream, &pStream->dwLength, pfnProgress))
    return false;
  pStream->pbyOwned.reset(pbyStream);
  pStream->pbyData = pbyStream;
  return true;
}

bool C_KestrelFile::MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  const C_WavDataPtr mono(pIWavData->CreateBitsConvertedData(16, 16, true, true));
  if (!mono) return false;
  mono->ConvertToMono();
  // Kept: a stream that is there is stored as it is, also when the PCM was edited since; coding it
  // again would cost quality, and who wants that forces it. Pinned by
  // WriteFile_AfterALoad_WritesTheLoadedStreamEvenWhenThePcmWasChanged.
  if (!m_bForceEncode && GetCodingType() == AUDIO_FILE_KESTREL) {
    pStream->pbyData = pIWavData->GetEncBuffer();
    pStream->dwLength = pIWavData->GetEncBufferLen();
    return pStream->pbyData != nullptr && pStream->dwLength > 0;
  }
  C_KestrelCodec codec;
  return Encode(mono.get(), codec, pfnProgress, pStream);
}
