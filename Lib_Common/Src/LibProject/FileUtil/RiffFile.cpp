// SPDX-License-Identifier: Apache-2.0
#include "RiffFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "ByteReader.h"
#include "FileReader.h"
#include "LargeMemory.h"
#include "StdioFile.h"
#include "TargetFile.h"
#include "VcmAssert.h"

struct S_RiffStream {
  explicit S_RiffStream(vcm::C_FilePtr file) : reader(std::move(file)) {}
  explicit S_RiffStream(std::FILE* pFile) : reader(pFile) {}

  std::optional<std::size_t> Read(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) {
    const auto cbRead = reader.ReadSome(qwPosition, bytes);
    bReadError |= !cbRead;
    return cbRead;
  }
  bool CanBeAt(std::uint64_t qwPosition) {
    const auto bCan = reader.CanBeAt(qwPosition);
    bReadError |= !bCan;
    return bCan.value_or(false);
  }

  vcm::C_FileReader reader;
  // Something that the file holds could not be read.
  bool bReadError = false;
};

namespace {

constexpr const char* kSource = "FileUtil/RiffFile";
constexpr std::size_t kIDLength = 4;
constexpr std::size_t kFileHeaderLength = 12;
constexpr std::size_t kChunkHeaderLength = 8;
constexpr std::size_t kPieceLength = 1024;
constexpr std::size_t kCopyLength = 65536;
constexpr std::uint64_t kMaxSize = std::numeric_limits<std::uint32_t>::max();

std::string_view ID(const char* pszID) { return {pszID, kIDLength}; }

bool SameID(std::span<const std::uint8_t> bytes, const char* pszID) {
  return std::memcmp(bytes.data(), pszID, kIDLength) == 0;
}

struct S_FileHeader {
  std::size_t nFormType = 0;       // index in the list of form types
  std::uint32_t dwListLength = 0;  // of the chunks after the header
};

// Empty when the header is not that of a RIFF file of one of these form types.
std::optional<S_FileHeader> ReadFileHeader(vcm::C_FileReader& file,
                                           std::span<const char* const> formTypes) {
  std::array<std::uint8_t, kFileHeaderLength> header{};
  if (!file.ReadExact(0, header)) return std::nullopt;
  vcm::C_ByteReader reader(header);
  const bool bRiff = SameID(reader.Bytes(kIDLength), "RIFF");
  const std::uint32_t dwRiffSize = reader.U32();
  const auto formType = reader.Bytes(kIDLength);
  const auto found = std::ranges::find_if(
      formTypes, [&](const char* pszFormType) { return SameID(formType, pszFormType); });
  if (!bRiff || found == formTypes.end()) return std::nullopt;
  // Kept: sizes below 4 wrap, and the listing then runs to the end of the file. Writers that never
  // come back to fill in the size leave 0 there. Pinned by RiffSizeBelowFour_ListsToTheEndOfFile.
  return S_FileHeader{static_cast<std::size_t>(found - formTypes.begin()),
                      dwRiffSize - static_cast<std::uint32_t>(kIDLength)};
}

bool WriteFileHeader(std::FILE* pFile, std::uint32_t dwRiffSize, const char* pszFormType) {
  vcm::C_ByteWriter writer;
  writer.Text("RIFF", kIDLength);
  writer.U32(dwRiffSize);
  writer.Text(ID(pszFormType), kIDLength);
  return vcm::WriteExact(pFile, writer.Data());
}

// The position of the first byte from qwPosition on that is not zero. Empty at the end of the file
// and when it cannot be read.
std::optional<std::uint64_t> SkipZeros(S_RiffStream& stream, std::uint64_t qwPosition) {
  std::array<std::uint8_t, kPieceLength> piece;
  // Most chunks have no zeros before them.
  std::size_t cbPiece = kChunkHeaderLength;
  for (;; cbPiece = piece.size()) {
    const auto cbRead = stream.Read(qwPosition, std::span(piece).first(cbPiece));
    if (cbRead.value_or(0) == 0) return std::nullopt;
    const auto end = piece.begin() + static_cast<std::ptrdiff_t>(*cbRead);
    const auto found = std::find_if(piece.begin(), end, [](auto byByte) { return byByte != 0; });
    qwPosition += static_cast<std::uint64_t>(found - piece.begin());
    if (found != end) return qwPosition;
  }
}

// The chunk whose header is at qwPosition. Null when the file ends before that, when the payload
// starts beyond 4 GiB, and when the file cannot be read.
std::unique_ptr<C_RiffChunk> ReadChunk(const C_RiffStreamPtr& stream, std::uint64_t qwPosition) {
  std::array<std::uint8_t, kChunkHeaderLength> header{};
  if (stream->Read(qwPosition, header).value_or(0) < header.size()) return nullptr;
  vcm::C_ByteReader reader(header);
  char achID[kIDLength];
  std::memcpy(achID, reader.Bytes(kIDLength).data(), kIDLength);
  const std::uint32_t dwSize = reader.U32();
  const std::uint64_t qwDataPos = qwPosition + kChunkHeaderLength;
  if (qwDataPos > kMaxSize) return nullptr;
  // Some file systems know no positions as far beyond the end of a file as a chunk may claim.
  const auto qwFileLength = stream->reader.Length();
  const bool bInFile = qwFileLength && qwDataPos + dwSize <= *qwFileLength;
  if (!bInFile && !stream->CanBeAt(qwDataPos + dwSize)) return nullptr;
  return std::make_unique<C_RiffChunk>(achID, dwSize, static_cast<std::uint32_t>(qwDataPos),
                                       stream);
}

// Whether a pipe ends before it holds the header of a chunk. A pipe has no positions, so a chunk in
// it could not be found again.
bool EndsWithoutAChunk(std::FILE* pPipe) {
  int nByte = 0;
  while (nByte == 0) nByte = std::getc(pPipe);
  if (nByte == EOF) return std::ferror(pPipe) == 0;
  std::array<std::uint8_t, kChunkHeaderLength - 1> rest{};
  return vcm::ReadSome(pPipe, rest).value_or(rest.size()) < rest.size();
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
  if (dwLength < kChunkHeaderLength) return true;
  const auto qwStart = vcm::Tell(pFile);
  if (!qwStart) return EndsWithoutAChunk(pFile);
  std::uint64_t qwPosition = *qwStart;
  const bool bRet = LoadChunks(std::make_shared<S_RiffStream>(pFile), &qwPosition, dwLength);
  return vcm::SeekTo(pFile, qwPosition) && bRet;
}

bool C_RiffChunkList::LoadChunks(const C_RiffStreamPtr& stream, std::uint64_t* pqwPosition,
                                 unsigned int dwLength) {
  std::uint32_t dwRemaining = dwLength;
  while (dwRemaining >= kChunkHeaderLength) {
    const auto qwHeader = SkipZeros(*stream, *pqwPosition);
    const std::uint64_t qwEnd = stream->reader.Length().value_or(0);
    if (!qwHeader) {
      *pqwPosition = std::max(*pqwPosition, qwEnd);
      break;
    }
    // Kept: the count may wrap and is not checked again before the header is read. A chunk after
    // the zeros is therefore listed even when the RIFF size ends inside them. Old writers leave
    // their zero filler out of the size. Pinned by ZeroRunAcrossTheRiffEnd_ListsTheChunkAfterIt.
    dwRemaining -= static_cast<std::uint32_t>(*qwHeader - *pqwPosition);
    auto chunk = ReadChunk(stream, *qwHeader);
    if (!chunk) {
      *pqwPosition = std::max(*pqwPosition, std::min(*qwHeader + kChunkHeaderLength, qwEnd));
      break;
    }
    const std::uint64_t qwTaken = std::uint64_t{kChunkHeaderLength} + chunk->GetDataLength();
    *pqwPosition = *qwHeader + qwTaken;
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
  if (m_pbyData == nullptr && !m_bReadFailed && !ReadPayload()) return false;
  if (dwLength == 0) return true;
  if (m_pbyData != nullptr) {
    std::memcpy(pDst, m_pbyData + dwOffset, dwLength);
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
  if (!m_pbyOwned) m_pbyOwned = std::make_unique_for_overwrite<std::uint8_t[]>(m_dwSize);
  std::memcpy(m_pbyOwned.get(), pSrc, m_dwSize);
  m_pbyData = m_pbyOwned.get();
}

void C_RiffChunk::LendData(const void* pSrc, std::shared_ptr<const void> keeper) {
  if (m_dwSize == 0) return;
  m_keeper = std::move(keeper);
  m_pbyData = static_cast<const std::uint8_t*>(pSrc);
  m_pbyOwned.reset();
}

void C_RiffChunk::TakeData(std::unique_ptr<std::uint8_t[]> pbyData) {
  m_pbyOwned = std::move(pbyData);
  m_pbyData = m_pbyOwned.get();
}

void C_RiffChunk::TakeFile(vcm::C_FilePtr file) {
  m_stream = std::make_shared<S_RiffStream>(std::move(file));
  m_bOwnFile = true;
  m_dwDataPos = 0;
}

bool C_RiffChunk::HasChunkID(const char* pszID) const {
  return std::memcmp(m_achID, pszID, kIDLength) == 0;
}

// Looks at the file's length before allocating memory, because a header may claim 4 GiB.
std::unique_ptr<std::uint8_t[]> C_RiffChunk::ReadAll(std::size_t cbMore) {
  if (m_dwSize == 0 || !m_stream || !m_stream->reader.IsOpen()) return nullptr;
  if (CountHeldPayload() != m_dwSize) return nullptr;
  const std::uint64_t qwBytes = std::uint64_t{m_dwSize} + cbMore;
  if (!std::in_range<std::size_t>(qwBytes)) return nullptr;
  auto pbyData = vcm::NewBytes(static_cast<std::size_t>(qwBytes));
  const auto cbRead = m_stream->Read(m_bOwnFile ? 0 : m_dwDataPos, {pbyData.get(), m_dwSize});
  if (cbRead != m_dwSize) return nullptr;
  std::fill_n(pbyData.get() + m_dwSize, cbMore, std::uint8_t{0});
  return pbyData;
}

std::unique_ptr<C_RiffChunk> C_RiffChunk::CreateHeldPart() {
  if (!m_stream || !m_stream->reader.IsOpen() || m_stream->bReadError) return nullptr;
  const auto cbHeld = CountHeldPayload();
  if (!cbHeld || *cbHeld == m_dwSize) return nullptr;
  auto part = std::make_unique<C_RiffChunk>(m_achID, *cbHeld);
  auto pbyHeld = std::make_unique_for_overwrite<std::uint8_t[]>(*cbHeld);
  const auto cbRead = m_stream->Read(m_dwDataPos, {pbyHeld.get(), *cbHeld});
  if (*cbHeld > 0) part->TakeData(std::move(pbyHeld));
  m_stream->bReadError |= cbRead != *cbHeld;
  return m_stream->bReadError ? nullptr : std::move(part);
}

bool C_RiffChunk::LoadSubChunks() {
  if (!m_stream || !m_stream->reader.IsOpen() || m_stream->bReadError) return false;
  std::uint64_t qwPosition = m_dwDataPos;
  return m_subChunks.LoadChunks(m_stream, &qwPosition, m_dwSize);
}

bool C_RiffChunk::WriteData(std::FILE* pFile) {
  if (m_pbyData != nullptr) return vcm::WriteExact(pFile, {m_pbyData, m_dwSize});
  if (m_bReadFailed) return WriteZeros(pFile, m_dwSize);
  if (m_bOwnFile) return CopyPayload(pFile);
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

bool C_RiffChunk::CopyPayload(std::FILE* pFile) {
  std::vector<std::uint8_t> piece(std::min<std::size_t>(m_dwSize, kCopyLength));
  for (std::uint32_t dwDone = 0; dwDone < m_dwSize;) {
    const auto part =
        std::span(piece).first(std::min<std::size_t>(piece.size(), m_dwSize - dwDone));
    if (m_stream->Read(dwDone, part) != part.size() || !vcm::WriteExact(pFile, part)) return false;
    dwDone += static_cast<std::uint32_t>(part.size());
  }
  return true;
}

bool C_RiffChunk::ReadPayload() {
  if (!m_stream || !m_stream->reader.IsOpen()) return false;
  auto pbyData = ReadAll(0);
  m_bReadFailed = pbyData == nullptr;
  if (!m_bReadFailed) TakeData(std::move(pbyData));
  return !m_bReadFailed;
}

std::optional<std::uint32_t> C_RiffChunk::CountHeldPayload() const {
  const std::uint64_t qwFrom = m_bOwnFile ? 0 : m_dwDataPos;
  auto qwFileLength = m_stream->reader.Length();
  // The file may have been written to its end in the meantime.
  if (qwFileLength && *qwFileLength < qwFrom + m_dwSize) {
    qwFileLength = m_stream->reader.Measure();
    m_stream->bReadError |= !qwFileLength;
  }
  if (!qwFileLength) return std::nullopt;
  const std::uint64_t qwHeld = *qwFileLength - std::min(*qwFileLength, qwFrom);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(qwHeld, m_dwSize));
}

C_RiffFile::~C_RiffFile() { SafeCloseFile(); }

bool C_RiffFile::Open(const char* pszPath, const char* pszFormType) {
  return OpenAny(pszPath, {&pszFormType, 1}).has_value();
}

std::optional<std::size_t> C_RiffFile::OpenAny(const char* pszPath,
                                               std::span<const char* const> formTypes) {
  SafeCloseFile();
  RemoveChunks();
  auto file = vcm::OpenFile(pszPath, "rb");
  if (!file) return std::nullopt;
  auto stream = std::make_shared<S_RiffStream>(std::move(file));
  const auto header = ReadFileHeader(stream->reader, formTypes);
  if (!header || !stream->reader.Length()) return std::nullopt;
  m_stream = std::move(stream);
  m_dwListLength = header->dwListLength;
  std::uint64_t qwPosition = kFileHeaderLength;
  if (m_chunks.LoadChunks(m_stream, &qwPosition, m_dwListLength)) return header->nFormType;
  SafeCloseFile();
  RemoveChunks();
  return std::nullopt;
}

std::optional<std::uint64_t> C_RiffFile::GetFileLength() const {
  return m_stream ? m_stream->reader.Length() : std::nullopt;
}

bool C_RiffFile::HasReadError() const { return m_stream && m_stream->bReadError; }

bool C_RiffFile::IsCutShort() const {
  const auto qwFileLength = GetFileLength();
  if (!qwFileLength) return false;
  std::uint64_t qwEnd = kFileHeaderLength + std::uint64_t{m_dwListLength};
  if (const int nChunks = GetChunkCount(); nChunks > 0) {
    C_RiffChunk& last = *GetChunkAt(nChunks - 1);
    qwEnd = std::max(qwEnd, std::uint64_t{last.GetDataPos()} + last.GetDataLength());
  }
  return *qwFileLength < qwEnd;
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
  m_stream->reader.Close();
  m_stream.reset();
}
