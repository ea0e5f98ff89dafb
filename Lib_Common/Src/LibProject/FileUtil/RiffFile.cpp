// SPDX-License-Identifier: Apache-2.0
#include "RiffFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "ByteReader.h"
#include "StdioFile.h"
#include "TargetFile.h"
#include "VcmAssert.h"

namespace {

constexpr const char* kSource = "FileUtil/RiffFile";
constexpr std::size_t kIDLength = 4;
constexpr std::size_t kFileHeaderLength = 12;
constexpr std::size_t kChunkHeaderLength = 8;
constexpr std::uint64_t kMaxSize = std::numeric_limits<std::uint32_t>::max();

std::string_view ID(const char* pszID) { return {pszID, kIDLength}; }

bool SameID(std::span<const std::uint8_t> bytes, const char* pszID) {
  return std::memcmp(bytes.data(), pszID, kIDLength) == 0;
}

// Returns the length of the file's chunk list, or nothing when the header is not that of a RIFF
// file of this form type.
std::optional<std::uint32_t> ReadFileHeader(std::FILE* pFile, const char* pszFormType) {
  std::array<std::uint8_t, kFileHeaderLength> header{};
  if (!vcm::ReadExact(pFile, header)) return std::nullopt;
  vcm::C_ByteReader reader(header);
  const bool bRiff = SameID(reader.Bytes(kIDLength), "RIFF");
  const std::uint32_t dwRiffSize = reader.U32();
  if (!bRiff || !SameID(reader.Bytes(kIDLength), pszFormType)) return std::nullopt;
  // Kept: sizes below 4 wrap, and the listing then runs to the end of the file. Writers that never
  // come back to fill in the size leave 0 there. Pinned by RiffSizeBelowFour_ListsToTheEndOfFile.
  return dwRiffSize - static_cast<std::uint32_t>(kIDLength);
}

bool WriteFileHeader(std::FILE* pFile, std::uint32_t dwRiffSize, const char* pszFormType) {
  vcm::C_ByteWriter writer;
  writer.Text("RIFF", kIDLength);
  writer.U32(dwRiffSize);
  writer.Text(ID(pszFormType), kIDLength);
  return vcm::WriteExact(pFile, writer.Data());
}

// Moves the stream to the first byte that is not zero. Returns the number of zero bytes skipped,
// modulo 2^32, or nothing at the end of the file and when it cannot be read.
std::optional<std::uint32_t> SkipZeros(S_RiffStream& stream) {
  std::uint32_t dwZeros = 0;
  for (;;) {
    int nByte = std::getc(stream.pFile);
    if (nByte == EOF) {
      std::array<std::uint8_t, 1> byte{};
      const auto cbRead = vcm::ReadSome(stream.pFile, byte);
      stream.bReadError |= !cbRead;
      if (cbRead.value_or(0) == 0) return std::nullopt;
      nByte = byte[0];
    }
    if (nByte != 0) {
      // One byte that was just read can always be put back.
      static_cast<void>(std::ungetc(nByte, stream.pFile));
      return dwZeros;
    }
    ++dwZeros;
  }
}

// Reads the chunk header at the stream's position and moves the stream past the payload. Null when
// the file ends before that, when the payload starts beyond 4 GiB, and when the file cannot be
// read.
std::unique_ptr<C_RiffChunk> ReadChunk(const C_RiffStreamPtr& stream) {
  std::array<std::uint8_t, kChunkHeaderLength> header{};
  const auto cbRead = vcm::ReadSome(stream->pFile, header);
  stream->bReadError |= !cbRead;
  if (cbRead.value_or(0) < header.size()) return nullptr;
  vcm::C_ByteReader reader(header);
  char achID[kIDLength];
  std::memcpy(achID, reader.Bytes(kIDLength).data(), kIDLength);
  const std::uint32_t dwSize = reader.U32();
  const auto qwDataPos = vcm::Tell(stream->pFile);
  stream->bReadError |= !qwDataPos;
  if (!qwDataPos || *qwDataPos > kMaxSize) return nullptr;
  if (!C_RiffChunkList::Skip(stream->pFile, dwSize)) {
    // Some file systems know no positions as far beyond the end of a file as a chunk may claim.
    const auto qwFileLength = vcm::SizeAndSeekEnd(stream->pFile);
    stream->bReadError |= !qwFileLength || *qwDataPos + dwSize <= *qwFileLength;
    return nullptr;
  }
  return std::make_unique<C_RiffChunk>(achID, dwSize, static_cast<std::uint32_t>(*qwDataPos),
                                       stream);
}

bool WriteZeros(std::FILE* pFile, std::uint32_t dwCount) {
  static constexpr std::array<std::uint8_t, 4096> kZeros{};
  while (dwCount > 0) {
    const std::size_t cbPart = std::min<std::size_t>(dwCount, kZeros.size());
    if (!vcm::WriteExact(pFile, std::span(kZeros).first(cbPart))) return false;
    dwCount -= static_cast<std::uint32_t>(cbPart);
  }
  return true;
}

}  // namespace

C_RiffChunkList::C_RiffChunkList() = default;
C_RiffChunkList::~C_RiffChunkList() = default;

unsigned int C_RiffChunkList::GetChunksLength() const {
  return static_cast<unsigned int>(GetTrueChunksLength());
}

std::uint64_t C_RiffChunkList::GetTrueChunksLength() const {
  std::uint64_t qwLength = 0;
  for (int i = 0; i < GetCount(); ++i) {
    C_RiffChunk* pChunk = GetAt(i);
    VCM_ASSERT(pChunk != nullptr, "GetChunksLength", kSource, __LINE__, "pChunk != NULL");
    qwLength += std::uint64_t{kChunkHeaderLength} + pChunk->GetDataLength();
  }
  return qwLength;
}

C_RiffChunk* C_RiffChunkList::FindChunk(const char* pszID, int nStart) const {
  for (int i = std::max(nStart, 0); i < GetCount(); ++i) {
    C_RiffChunk* pChunk = GetAt(i);
    VCM_ASSERT(pChunk != nullptr, "FindChunk", kSource, __LINE__, "NULL != pChunk");
    if (pChunk->HasChunkID(pszID)) return pChunk;
  }
  return nullptr;
}

C_RiffChunk* C_RiffChunkList::AddChunk(const char* pszID, unsigned int dwSize) {
  return vcm::AddOwned(*this, std::make_unique<C_RiffChunk>(pszID, dwSize));
}

bool C_RiffChunkList::LoadChunks(std::FILE* pFile, unsigned int dwLength) {
  return LoadChunks(std::make_shared<S_RiffStream>(S_RiffStream{pFile}), dwLength);
}

bool C_RiffChunkList::LoadChunks(const C_RiffStreamPtr& stream, unsigned int dwLength) {
  std::uint32_t dwRemaining = dwLength;
  while (dwRemaining >= kChunkHeaderLength) {
    const auto dwZeros = SkipZeros(*stream);
    if (!dwZeros) break;
    // Kept: the count may wrap and is not checked again before the header is read. A chunk after
    // the zeros is therefore listed even when the RIFF size ends inside them. Old writers leave
    // their zero filler out of the size. Pinned by ZeroRunAcrossTheRiffEnd_ListsTheChunkAfterIt.
    dwRemaining -= *dwZeros;
    auto chunk = ReadChunk(stream);
    if (!chunk) break;
    const std::uint64_t qwTaken = std::uint64_t{kChunkHeaderLength} + chunk->GetDataLength();
    vcm::AddOwned(*this, std::move(chunk));
    if (dwRemaining < qwTaken) break;
    dwRemaining -= static_cast<std::uint32_t>(qwTaken);
  }
  return !stream->bReadError;
}

bool C_RiffChunkList::WriteChunks(std::FILE* pFile) {
  for (int i = 0; i < GetCount(); ++i) {
    C_RiffChunk* pChunk = GetAt(i);
    VCM_ASSERT(pChunk != nullptr, "WriteChunks", kSource, __LINE__, "pChunk != NULL");
    if (!pChunk->Write(pFile)) return false;
  }
  return true;
}

bool C_RiffChunkList::Skip(std::FILE* pFile, unsigned int dwCount) {
  const auto qwPosition = vcm::Tell(pFile);
  return qwPosition && vcm::SeekTo(pFile, *qwPosition + dwCount);
}

C_RiffChunk::C_RiffChunk(const char* pszID, unsigned int dwSize)
    : C_RiffChunk(pszID, dwSize, 0, nullptr) {}

C_RiffChunk::C_RiffChunk(const char* pszID, unsigned int dwSize, unsigned int dwDataPos,
                         C_RiffStreamPtr stream)
    : m_dwSize(dwSize), m_dwDataPos(dwDataPos), m_stream(std::move(stream)) {
  std::memcpy(m_achID, pszID, kIDLength);
}

C_RiffChunk::~C_RiffChunk() = default;

bool C_RiffChunk::GetData(void* pDst, unsigned int dwLength, unsigned int dwOffset) {
  if (m_dwSize == 0 || dwLength > m_dwSize || dwOffset > m_dwSize - dwLength) return false;
  if (!m_pbyData && !m_bReadFailed && !ReadPayload()) return false;
  if (dwLength == 0) return true;
  if (m_pbyData) {
    std::memcpy(pDst, m_pbyData.get() + dwOffset, dwLength);
  } else {
    // Kept: only the call that finds the payload cut short reports it. Later calls succeed and
    // return zeros, so that callers that checked once get through such files. Pinned by
    // GetDataAfterAFailedRead_GivesZerosAndIsTrue.
    std::memset(pDst, 0, dwLength);
  }
  return true;
}

void C_RiffChunk::SetData(const void* pSrc) {
  if (m_dwSize == 0) return;
  if (!m_pbyData) m_pbyData = std::make_unique_for_overwrite<std::uint8_t[]>(m_dwSize);
  std::memcpy(m_pbyData.get(), pSrc, m_dwSize);
}

bool C_RiffChunk::HasChunkID(const char* pszID) const {
  return std::memcmp(m_achID, pszID, kIDLength) == 0;
}

std::unique_ptr<C_RiffChunk> C_RiffChunk::CreateHeldPart() {
  if (!m_stream || m_stream->pFile == nullptr) return nullptr;
  const auto cbHeld = SeekToHeldPayload();
  if (!cbHeld || *cbHeld == m_dwSize) return nullptr;
  auto part = std::make_unique<C_RiffChunk>(m_achID, *cbHeld);
  if (*cbHeld > 0) part->m_pbyData = std::make_unique_for_overwrite<std::uint8_t[]>(*cbHeld);
  m_stream->bReadError |= !vcm::ReadExact(m_stream->pFile, {part->m_pbyData.get(), *cbHeld});
  return m_stream->bReadError ? nullptr : std::move(part);
}

bool C_RiffChunk::LoadSubChunks() {
  if (!m_stream || m_stream->pFile == nullptr) return false;
  m_stream->bReadError |= !vcm::SeekTo(m_stream->pFile, m_dwDataPos);
  return !m_stream->bReadError && m_subChunks.LoadChunks(m_stream, m_dwSize);
}

bool C_RiffChunk::WriteData(std::FILE* pFile) {
  if (m_pbyData) return vcm::WriteExact(pFile, {m_pbyData.get(), m_dwSize});
  if (m_bReadFailed) return WriteZeros(pFile, m_dwSize);
  return m_subChunks.WriteChunks(pFile);
}

bool C_RiffChunk::Write(std::FILE* pFile) {
  vcm::C_ByteWriter header;
  header.Text({m_achID, kIDLength}, kIDLength);
  header.U32(m_dwSize);
  if (!vcm::WriteExact(pFile, header.Data())) return false;
  // A pipe has no positions, but the file can still be written to it.
  const std::uint64_t qwDataPos = vcm::Tell(pFile).value_or(kMaxSize);
  if (qwDataPos > kMaxSize) return false;
  m_dwDataPos = static_cast<std::uint32_t>(qwDataPos);
  return WriteData(pFile);
}

// Checks the file's length before allocating memory, because a header may claim 4 GiB.
bool C_RiffChunk::ReadPayload() {
  if (!m_stream || m_stream->pFile == nullptr) return false;
  const auto cbHeld = SeekToHeldPayload();
  m_bReadFailed = cbHeld != m_dwSize;
  if (m_bReadFailed) return false;
  auto pbyData = std::make_unique_for_overwrite<std::uint8_t[]>(m_dwSize);
  m_bReadFailed = !vcm::ReadExact(m_stream->pFile, {pbyData.get(), m_dwSize});
  m_stream->bReadError |= m_bReadFailed;
  if (!m_bReadFailed) m_pbyData = std::move(pbyData);
  return !m_bReadFailed;
}

std::optional<std::uint32_t> C_RiffChunk::SeekToHeldPayload() {
  const auto qwFileLength = vcm::SizeAndSeekEnd(m_stream->pFile);
  if (!qwFileLength || !vcm::SeekTo(m_stream->pFile, m_dwDataPos)) {
    m_stream->bReadError = true;
    return std::nullopt;
  }
  const std::uint64_t qwHeld = *qwFileLength - std::min<std::uint64_t>(*qwFileLength, m_dwDataPos);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(qwHeld, m_dwSize));
}

C_RiffFile::~C_RiffFile() { SafeCloseFile(); }

bool C_RiffFile::Open(const char* pszPath, const char* pszFormType) {
  SafeCloseFile();
  RemoveChunks();
  auto file = vcm::OpenFile(pszPath, "rb");
  if (!file) return false;
  const auto dwLength = ReadFileHeader(file.get(), pszFormType);
  if (!dwLength) return false;
  m_stream = std::make_shared<S_RiffStream>();
  m_stream->pFile = file.release();
  m_dwListLength = *dwLength;
  if (m_chunks.LoadChunks(m_stream, *dwLength)) return true;
  SafeCloseFile();
  RemoveChunks();
  return false;
}

bool C_RiffFile::IsCutShort() {
  if (!m_stream) return false;
  const auto qwFileLength = vcm::SizeAndSeekEnd(m_stream->pFile);
  m_stream->bReadError |= !qwFileLength;
  std::uint64_t qwEnd = kFileHeaderLength + std::uint64_t{m_dwListLength};
  if (const int nChunks = GetChunkCount(); nChunks > 0) {
    C_RiffChunk& last = *GetChunkAt(nChunks - 1);
    qwEnd = std::max(qwEnd, std::uint64_t{last.GetDataPos()} + last.GetDataLength());
  }
  return qwFileLength && *qwFileLength < qwEnd;
}

bool C_RiffFile::Save(const char* pszPath, const char* pszFormType) {
  // What could not be read would be written as if the file had never held it.
  if (HasReadError()) return false;
  SafeCloseFile();
  const std::uint64_t qwRiffSize = kIDLength + m_chunks.GetTrueChunksLength();
  if (qwRiffSize > kMaxSize) return false;
  vcm::C_TargetFile target(pszPath);
  if (target.Stream() == nullptr) return false;
  return target.Commit(
      WriteFileHeader(target.Stream(), static_cast<std::uint32_t>(qwRiffSize), pszFormType) &&
      m_chunks.WriteChunks(target.Stream()));
}

C_RiffChunk* C_RiffFile::AddChunk(const char* pszID, unsigned int dwSize) {
  return m_chunks.AddChunk(pszID, dwSize);
}

C_RiffChunk* C_RiffFile::FindChunk(const char* pszID, int nStart) const {
  return m_chunks.FindChunk(pszID, nStart);
}

void C_RiffFile::SafeCloseFile() {
  if (!m_stream) return;
  static_cast<void>(std::fclose(std::exchange(m_stream->pFile, nullptr)));
  m_stream.reset();
}
