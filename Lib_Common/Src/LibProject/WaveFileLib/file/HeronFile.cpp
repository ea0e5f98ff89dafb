// SPDX-License-Identifier: Apache-2.0
#include "file/HeronFile.h"

#include <utility>

#include "VcmAssert.h"
#include "codec/HeronCodec.h"
#include "codec/TempStream.h"

namespace {

constexpr const char* kSource = "WaveFileLib/HeronFile";

}  // namespace

bool C_HeronFileBase::WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                                PFN_CodecProgress pfnProgress, bool bForceEncode,
                                unsigned int /*dwCodecOption*/) {
  return WriteAs(m_eTargetType, pszFileName, bEncode, bWriteCodecHead, pfnProgress, bForceEncode);
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
  auto written = codec.EncodeToFile(piWavData, m_eTargetType, pfnProgress);
  if (!written) return false;
  pStream->Own(std::move(written->file), written->dwSize);
  return true;
}

bool C_HeronFileBase::MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  // Kept: a stream that the sound carries is written unchanged, even when the PCM was edited in the
  // meantime. Encoding again would cost quality, and callers who want that set bForceEncode. Pinned
  // by ExistingStream_IsWrittenEvenWhenThePcmWasChanged.
  if (ReusesStream(m_eTargetType)) return BorrowStream(pStream);
  return Encode(pIWavData, pfnProgress, pStream);
}
