// SPDX-License-Identifier: Apache-2.0
#include "HeronFile.h"

#include <optional>

#include "HeronCodec.h"
#include "VcmAssert.h"

namespace {

constexpr const char* kSource = "WaveFileLib/HeronFile";

}  // namespace

bool C_HeronFileBase::WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                                PFN_CodecProgress pfnProgress, bool bForceEncode,
                                unsigned int /*dwCodecOption*/) {
  SetForceEncode(bForceEncode);
  if (!bEncode) return WriteVef(pszFileName, "VEFF", /*bHeader=*/true, m_eTargetType);
  S_Stream stream;
  if (!MakeStream(pfnProgress, &stream)) return false;
  // Kept: a bare stream, which no class opens; whoever wants to open it prepends an SP header.
  // Pinned by BareStream_IsOpenedByNoClass.
  std::optional<tagAudioFileType> eHeadType;
  if (bWriteCodecHead) eHeadType = m_eTargetType;
  return WriteStreamFile(pszFileName, stream, eHeadType);
}

bool C_HeronFileBase::WriteDataChunk(C_RiffFile* pRiffFile) {
  S_Stream stream;
  if (pRiffFile == nullptr || !MakeStream(nullptr, &stream)) return false;
  return AddDataChunk(*pRiffFile, stream.pbyData, stream.dwLength);
}

bool C_HeronFileBase::DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                                   PFN_DecodedData /*pfnData*/) {
  C_HeronCodec codec;
  return codec.Decode(pbyStream, dwLength, GetWavData());
}

bool C_HeronFileBase::Encode(I_WavData* piWavData, PFN_CodecProgress pfnProgress,
                             S_Stream* pStream) {
  I_AudioCodecParam* piParam = GetAudioCodecParam();
  VCM_ASSERT(piParam != nullptr, "Encode", kSource, __LINE__, "NULL != piParam");
  C_HeronCodec codec;
  unsigned char* pbyStream = nullptr;
  if (!codec.Encode(piWavData, m_eTargetType, piParam, pfnProgress, &pbyStream, &pStream->dwLength))
    return false;
  pStream->pbyOwned.reset(pbyStream);
  pStream->pbyData = pbyStream;
  return true;
}

bool C_HeronFileBase::MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  // Kept: a stream that is there is stored as it is, also when the PCM was edited since; coding it
  // again would cost quality, and who wants that forces it. Pinned by
  // StreamThatIsThere_IsWrittenEvenWhenThePcmWasChanged.
  if (ReusesStream(m_eTargetType)) return BorrowStream(pStream);
  return Encode(pIWavData, pfnProgress, pStream);
}
