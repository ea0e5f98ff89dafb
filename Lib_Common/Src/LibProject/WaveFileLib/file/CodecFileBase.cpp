// SPDX-License-Identifier: Apache-2.0
#include "file/CodecFileBase.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "StdioFile.h"
#include "TargetFile.h"
#include "file/CodecHead.h"
#include "file/SpHeader.h"

namespace {

// The bytes after the SP header, or the whole file when it has no SP header. Empty when the file
// cannot be read, and for a stream whose size does not fit in 32 bits.
std::optional<std::vector<unsigned char>> ReadStream(const char* pszFileName) {
  C_SpHeader header;
  const auto bHeader = FindSpHeader(&header, pszFileName);
  const auto file = vcm::OpenFile(pszFileName, "rb");
  if (!bHeader || !file) return std::nullopt;
  const std::uint64_t qwStart = *bHeader ? C_SpHeader::kBytes : 0;
  const auto qwSize = vcm::SizeAndSeekEnd(file.get());
  if (!qwSize || !vcm::SeekTo(file.get(), qwStart)) return std::nullopt;
  const std::uint64_t qwLength = *qwSize - std::min(*qwSize, qwStart);
  if (qwLength > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  std::vector<unsigned char> stream(static_cast<std::size_t>(qwLength));
  const auto cbRead = vcm::ReadSome(file.get(), stream);
  if (!cbRead) return std::nullopt;
  stream.resize(*cbRead);
  return stream;
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
  return AddDataChunk(*pRiffFile, stream.pbyData, stream.dwLength);
}

bool C_CodecFileBase::WriteAs(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                              bool bWriteCodecHead, PFN_CodecProgress pfnProgress,
                              bool bForceEncode) {
  m_bForceEncode = bForceEncode;
  if (!bEncode) return WriteVef(pszFileName, "VEFF", /*bHeader=*/true, eType);
  S_Stream stream;
  if (!MakeStream(pfnProgress, &stream)) return false;
  // Kept: this writes a bare stream, although no file class opens one. To open it again, callers
  // prepend an SP header. Pinned by WriteFile_WritesTheBareStreamWithoutAHeader,
  // BareStream_IsOpenedByNoClass.
  std::optional<tagAudioFileType> eHeadType;
  if (bWriteCodecHead) eHeadType = eType;
  return WriteStreamFile(pszFileName, stream, eHeadType);
}

bool C_CodecFileBase::BorrowStream(S_Stream* pStream) {
  pStream->pbyData = GetWavData()->GetEncBuffer();
  pStream->dwLength = GetWavData()->GetEncBufferLen();
  return pStream->pbyData != nullptr && pStream->dwLength > 0;
}

bool C_CodecFileBase::WriteStreamFile(const char* pszFileName, const S_Stream& stream,
                                      std::optional<tagAudioFileType> eHeadType) {
  vcm::C_TargetFile target(pszFileName);
  std::FILE* pFile = target.Stream();
  if (pFile == nullptr) return false;
  const bool bHead =
      !eHeadType || codechead::Write(pFile, *eHeadType, GetWavInfo()->GetSampleRate());
  return target.Commit(bHead && vcm::WriteExact(pFile, {stream.pbyData, stream.dwLength}));
}

bool C_CodecFileBase::LoadSpStream(PFN_DecodedData pfnData) {
  const auto stream = ReadStream(GetFileName());
  return stream && TakeStream(stream->data(), static_cast<unsigned int>(stream->size()), pfnData);
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
  return TakeStream(pbyStream.get(), dwLength, nullptr);
}

bool C_CodecFileBase::TakeStream(const unsigned char* pbyStream, unsigned int dwLength,
                                 PFN_DecodedData pfnData) {
  I_WavData* pIWavData = GetWavData();
  if (!pIWavData->SetEncBuffer(pbyStream, dwLength)) return false;
  pIWavData->SetEncType(static_cast<tagAudioFileType>(GetCodingType()));
  return DecodeStream(pbyStream, dwLength, pfnData);
}
