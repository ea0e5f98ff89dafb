// SPDX-License-Identifier: Apache-2.0
#include "file/CodecFileBase.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "FileReader.h"
#include "LargeMemory.h"
#include "StdioFile.h"
#include "TargetFile.h"
#include "file/CodecHead.h"
#include "file/SpHeader.h"
#include "sound/WavData.h"

namespace {

struct S_Encoded {
  std::unique_ptr<unsigned char[]> pbyData;
  unsigned int dwLength = 0;
};

// The bytes after the SP header, or the whole file when it has no SP header. Empty when the file
// cannot be read, and for a stream whose size does not fit in 32 bits.
std::optional<S_Encoded> ReadStream(const char* pszFileName) {
  C_SpHeader header;
  const auto bHeader = FindSpHeader(&header, pszFileName);
  vcm::C_FileReader file(vcm::OpenFile(pszFileName, "rb"));
  if (!bHeader || !file.Length()) return std::nullopt;
  const std::uint64_t qwStart = *bHeader ? C_SpHeader::kBytes : 0;
  const std::uint64_t qwLength = *file.Length() - std::min(*file.Length(), qwStart);
  if (qwLength > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  S_Encoded encoded;
  encoded.pbyData = vcm::NewBytes(static_cast<std::size_t>(qwLength));
  const auto cbRead =
      file.ReadSome(qwStart, {encoded.pbyData.get(), static_cast<std::size_t>(qwLength)});
  if (!cbRead) return std::nullopt;
  encoded.dwLength = static_cast<unsigned int>(*cbRead);
  return encoded;
}

// Makes the bytes the encoded form of the sound. Our own sounds take them over, others copy them.
bool KeepStream(I_WavData& wavData, std::unique_ptr<unsigned char[]>& pbyStream,
                unsigned int dwLength) {
  C_WavData* const pWavData = AsOurOwn(wavData);
  return pWavData != nullptr && pbyStream != nullptr
             ? pWavData->TakeEncBuffer(std::move(pbyStream), dwLength)
             : wavData.SetEncBuffer(pbyStream.get(), dwLength);
}

}  // namespace

bool C_CodecFileBase::CheckFormat(const char* pszFileName, bool bWithInfo) {
  if (bWithInfo) PrepareWavData();
  C_SpHeader header;
  const auto bHeader = FindSpHeader(&header, pszFileName);
  if (!bHeader) return false;
  if (!*bHeader) {
    if (!CheckVefFormat(pszFileName, bWithInfo, m_family.foreignVefTypes)) return false;
    m_eContainerKind = kVefContainer;
    return true;
  }
  if (!m_family.spTypes.Has(header.GetID())) return false;
  m_eContainerKind = kSpHeader;
  if (bWithInfo) {
    PrepareWavData()->SetWavInfoData(header.GetFreq(), 0, 1, 16, 16, true);
    SetCodingType(header.GetID());
  }
  return true;
}

bool C_CodecFileBase::LoadData(bool bKeepEncoded, const char* /*pszCodecOption*/,
                               PFN_DecodedData pfnData) {
  if (GetWavData() == nullptr) return false;
  if (m_eContainerKind == kSpHeader) return LoadSpStream(pfnData);
  if (m_eContainerKind != kVefContainer) return false;
  return bKeepEncoded ? LoadVefAsStored() : LoadVefStream();
}

bool C_CodecFileBase::WriteDataChunk(C_RiffFile* pRiffFile) {
  S_Stream stream;
  if (pRiffFile == nullptr || !MakeStream(nullptr, &stream)) return false;
  if (stream.file) return AddDataChunk(*pRiffFile, std::move(stream.file), stream.dwLength);
  return AddDataChunk(*pRiffFile, stream.pbyData, stream.dwLength, std::move(stream.keeper));
}

bool C_CodecFileBase::WriteAs(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                              bool bWriteCodecHead, PFN_CodecProgress pfnProgress,
                              bool bForceEncode) {
  m_bForceEncode = bForceEncode;
  if (!bEncode) return WriteVef(pszFileName, "VEFF", /*bHeader=*/true, eType);
  // The callback may give the sound another rate.
  const unsigned int dwSampleRate = GetWavData() == nullptr ? 0 : GetWavInfo()->GetSampleRate();
  S_Stream stream;
  if (!MakeStream(pfnProgress, &stream)) return false;
  // Kept: this writes a bare stream, although no file class opens one. To open it again, callers
  // prepend an SP header. Pinned by WriteFile_WritesTheBareStreamWithoutAHeader,
  // BareStream_IsOpenedByNoClass.
  std::optional<S_Head> head;
  if (bWriteCodecHead) head = {eType, dwSampleRate};
  return WriteStreamFile(pszFileName, stream, head);
}

bool C_CodecFileBase::BorrowStream(S_Stream* pStream) {
  pStream->pbyData = GetWavData()->GetEncBuffer();
  pStream->dwLength = GetWavData()->GetEncBufferLen();
  C_WavData* const pOwn = AsOurOwn(*GetWavData());
  pStream->keeper = pOwn != nullptr ? pOwn->KeepEncBuffer() : nullptr;
  return pStream->pbyData != nullptr && pStream->dwLength > 0;
}

bool C_CodecFileBase::WriteStreamFile(const char* pszFileName, S_Stream& stream,
                                      std::optional<S_Head> head) {
  vcm::C_TargetFile target(pszFileName);
  std::FILE* pFile = target.Stream();
  if (pFile == nullptr) return false;
  const bool bHead = !head || codechead::Write(pFile, head->eType, head->dwSampleRate);
  return target.Commit(bHead &&
                       (stream.file ? vcm::CopyRest(stream.file.get(), pFile)
                                    : vcm::WriteExact(pFile, {stream.pbyData, stream.dwLength})));
}

bool C_CodecFileBase::LoadSpStream(PFN_DecodedData pfnData) {
  auto stream = ReadStream(GetFileName());
  return stream && TakeStream(std::move(stream->pbyData), stream->dwLength, pfnData);
}

// Kept: no pieces are handed over while a container is decoded. A listener would take the pieces
// for the PCM that the container stores beside the stream. Pinned by
// LoadData_OfAContainer_DecodesTheStreamWithoutACallback.
bool C_CodecFileBase::LoadVefStream() {
  std::unique_ptr<unsigned char[]> pbyStream;
  unsigned int dwLength = 0;
  if (!LoadVDATChunk(GetFileName(), &pbyStream, &dwLength)) return false;
  // The decoded sound is 16-bit mono, whatever the PCM beside the stream is.
  GetWavData()->SetWavInfoData(GetWavInfo()->GetSampleRate(), 0, 1, 16, 16, true);
  return TakeStream(std::move(pbyStream), dwLength, nullptr);
}

bool C_CodecFileBase::TakeStream(std::unique_ptr<unsigned char[]> pbyStream, unsigned int dwLength,
                                 PFN_DecodedData pfnData) {
  I_WavData& wavData = *GetWavData();
  const unsigned char* const pbyBytes = pbyStream.get();
  if (!KeepStream(wavData, pbyStream, dwLength)) return false;
  // The callback may give the sound another encoded form.
  C_WavData* const pOwn = AsOurOwn(wavData);
  const auto kept = pOwn != nullptr ? pOwn->KeepEncBuffer() : nullptr;
  wavData.SetEncType(static_cast<tagAudioFileType>(GetCodingType()));
  return DecodeStream(pbyBytes, dwLength, pfnData);
}
