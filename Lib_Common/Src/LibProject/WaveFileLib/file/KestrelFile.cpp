// SPDX-License-Identifier: Apache-2.0
#include "file/KestrelFile.h"

#include <utility>

#include "VcmAssert.h"
#include "codec/KestrelCodec.h"
#include "codec/TempStream.h"
#include "sound/MonoSamples.h"

namespace {

constexpr const char* kSource = "WaveFileLib/KestrelFile";

}  // namespace

bool C_KestrelFile::WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                              PFN_CodecProgress pfnProgress, bool bForceEncode,
                              unsigned int /*dwCodecOption*/) {
  return WriteAs(AUDIO_FILE_KESTREL, pszFileName, bEncode, bWriteCodecHead, pfnProgress,
                 bForceEncode);
}

bool C_KestrelFile::DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                                 PFN_DecodedData pfnData) {
  I_AudioCodecParam* piParam = GetAudioCodecParam();
  VCM_ASSERT(piParam != nullptr, "Decode", kSource, __LINE__, "NULL != piParam");
  C_KestrelCodec codec;
  return codec.LoadCodec(piParam->GetBitRate()) &&
         codec.Decode(pbyStream, dwLength, GetWavData(), pfnData);
}

bool C_KestrelFile::Encode(C_MonoSamples& samples, PFN_CodecProgress pfnProgress,
                           S_Stream* pStream) {
  I_AudioCodecParam* piParam = GetAudioCodecParam();
  VCM_ASSERT(piParam != nullptr, "Encode", kSource, __LINE__, "NULL != piParam");
  const unsigned int dwBitRate = piParam->GetBitRate();
  C_KestrelCodec codec;
  if (!codec.LoadCodec(dwBitRate)) return false;
  auto written = codec.EncodeToFile(samples, dwBitRate, pfnProgress);
  if (!written) return false;
  pStream->Own(std::move(written->file), written->dwSize);
  return true;
}

bool C_KestrelFile::MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  auto samples = C_MonoSamples::Of(*pIWavData);
  if (!samples) return false;
  // Kept: a stream that the sound carries is written unchanged, even when the PCM was edited in the
  // meantime. Encoding again would cost quality, and callers who want that set bForceEncode. Pinned
  // by WriteFile_AfterALoad_WritesTheLoadedStreamEvenWhenThePcmWasChanged.
  if (ReusesStream(AUDIO_FILE_KESTREL)) return BorrowStream(pStream);
  return Encode(*samples, pfnProgress, pStream);
}
