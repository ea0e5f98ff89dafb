// SPDX-License-Identifier: Apache-2.0
#include "file/SpHeader.h"

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <span>
#include <utility>

#include "ByteReader.h"
#include "FileReader.h"
#include "Replacement.h"
#include "StdioFile.h"

namespace {

constexpr std::uint32_t kSignature = 0xFF00FF00;
constexpr std::size_t kTextBytes = 16;
constexpr const char* kText = "VOXELTRONIC SP";
// The maker's earlier text, which old files carry.
constexpr const char* kOldText = "ORBITAL SPEECH";
constexpr unsigned int kVersion = 254;
constexpr unsigned int kKind = 2;
// Signature, text, version and kind: what a file must hold to be recognised.
constexpr std::size_t kRecognisedBytes = 22;
// A version 255 header has two more bytes after its format word. Nothing beyond this length is
// read.
constexpr std::size_t kLongestHeader = C_SpHeader::kBytes + 2;
constexpr std::uint64_t kOffsetID = 22;
constexpr std::uint64_t kOffsetFormat = 24;
constexpr std::uint64_t kOffsetValue34 = 34;

bool IsKnownText(std::span<const std::uint8_t> text) {
  std::array<char, kTextBytes> szText{};
  std::memcpy(szText.data(), text.data(), text.size());
  return std::strncmp(szText.data(), kText, kTextBytes) == 0 ||
         std::strncmp(szText.data(), kOldText, kTextBytes) == 0;
}

// The header's version when these bytes begin a header, otherwise 0.
unsigned int RecognisedVersion(vcm::C_ByteReader& reader) {
  if (reader.Remaining() < kRecognisedBytes || reader.U32() != kSignature) return 0;
  if (!IsKnownText(reader.Bytes(kTextBytes))) return 0;
  const unsigned int dwVersion = reader.U8();
  return dwVersion >= kVersion && reader.U8() == kKind ? dwVersion : 0;
}

// A field that the file does not hold completely is missing, and so are all fields after it. A
// missing field keeps its default.
template <typename T>
void TakeField(const vcm::C_ByteReader& reader, T value, T& field) {
  if (reader.Ok()) field = value;
}

// True when pszOther names the file that pFile reads. Opening such a target for writing would empty
// the source before it is copied.
bool IsSameFile(std::FILE* pFile, const char* pszOther) {
  struct stat one {};
  struct stat other {};
  return pszOther != nullptr && fstat(fileno(pFile), &one) == 0 && stat(pszOther, &other) == 0 &&
         one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Kept: the names beside a file are numbered from the clock. They need not be hard to foresee,
// because the files are created exclusively. Pinned by Prepend_SeedsTheGeneratorOncePerProcess.
unsigned int NumberFromTheClock() {
  static const bool bSeeded = [] {
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    return true;
  }();
  static_cast<void>(bSeeded);
  return static_cast<unsigned int>(
      std::rand());  // NOLINT(cert-msc30-c,cert-msc50-cpp,concurrency-mt-unsafe)
}

// The cbField bytes at qwOffset as a little-endian number; 0 when the file does not hold them all.
unsigned int ReadAt(const char* pszFileName, std::uint64_t qwOffset, std::size_t cbField) {
  std::array<std::uint8_t, sizeof(std::uint32_t)> field{};
  vcm::C_FileReader file(vcm::OpenFile(pszFileName, "rb"));
  if (!file.ReadExact(qwOffset, std::span(field).first(cbField))) return 0;
  return vcm::C_ByteReader(field).U32();
}

}  // namespace

C_SpHeader::C_SpHeader(unsigned char byKind, unsigned short wID, unsigned short wFormat,
                       unsigned int dwFrequency, unsigned int dwValue30, unsigned short wValue34,
                       unsigned char byValue36, unsigned int dwValue37)
    : m_byKind(byKind),
      m_wID(wID),
      m_wFormat(wFormat),
      m_dwFrequency(dwFrequency),
      m_dwValue30(dwValue30),
      m_wValue34(wValue34),
      m_byValue36(byValue36),
      m_dwValue37(dwValue37) {}

std::optional<bool> FindSpHeader(C_SpHeader* pHeader, const char* pszFileName) {
  *pHeader = C_SpHeader();
  vcm::C_FileReader file(vcm::OpenFile(pszFileName, "rb"));
  std::array<std::uint8_t, kLongestHeader> bytes{};
  const auto cbRead = file.ReadSome(0, bytes);
  if (!cbRead) return std::nullopt;
  vcm::C_ByteReader reader({bytes.data(), *cbRead});
  const unsigned int dwVersion = RecognisedVersion(reader);
  if (dwVersion == 0) return false;
  TakeField(reader, reader.U16(), pHeader->m_wID);
  TakeField(reader, reader.U16(), pHeader->m_wFormat);
  // Kept: the two extra bytes of version 255 are skipped here, but callers count every header as 48
  // bytes, and every header in memory has version 254. Players in the field do the same. Pinned by
  // Version255_SkipsTwoBytesAfterTheFormatWordAndReadsBackAs254.
  if (dwVersion > kVersion) reader.Skip(2);
  TakeField(reader, reader.U32(), pHeader->m_dwFrequency);
  TakeField(reader, reader.U32(), pHeader->m_dwValue30);
  TakeField(reader, reader.U16(), pHeader->m_wValue34);
  TakeField(reader, reader.U8(), pHeader->m_byValue36);
  TakeField(reader, reader.U32(), pHeader->m_dwValue37);
  return true;
}

bool ReadSpHeader(C_SpHeader* pHeader, const char* pszFileName) {
  return FindSpHeader(pHeader, pszFileName).value_or(false);
}

bool WriteSpHeader(const C_SpHeader& header, std::FILE* pFile) {
  vcm::C_ByteWriter writer;
  writer.U32(header.m_dwSignature);
  writer.Text(header.m_szText, kTextBytes);
  writer.U8(header.m_byVersion);
  writer.U8(header.m_byKind);
  writer.U16(header.m_wID);
  writer.U16(header.m_wFormat);
  writer.U32(header.m_dwFrequency);
  writer.U32(header.m_dwValue30);
  writer.U16(header.m_wValue34);
  writer.U8(header.m_byValue36);
  writer.U32(header.m_dwValue37);
  writer.Bytes(header.m_abyReserved);
  return vcm::WriteExact(pFile, writer.Data());
}

unsigned short GetSpFileID(const char* pszFileName) {
  C_SpHeader header;
  return ReadSpHeader(&header, pszFileName) ? header.GetID() : C_SpHeader::kNoID;
}

bool PrependSpHeader(const C_SpHeader& header, const char* pszFileName) {
  const auto source = vcm::OpenFile(pszFileName, "rb");
  struct stat status {};
  // Only regular files are accepted: any other file could be endless, and replacing it would turn
  // it into a regular file.
  if (!source || fstat(fileno(source.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
    return false;
  }
  vcm::C_Replacement replacement(pszFileName, NumberFromTheClock);
  if (replacement.Stream() == nullptr) return false;
  return WriteSpHeader(header, replacement.Stream()) &&
         vcm::CopyRest(source.get(), replacement.Stream()) &&
         replacement.TakeOwnerAndMode(status, pszFileName) && replacement.TakePlaceOf(pszFileName);
}

bool StripSpHeader(C_SpHeader* pHeader, const char* pszSource, const char* pszTarget) {
  // A source whose start cannot be read might have a header. The target is left alone then.
  const auto bHeader = FindSpHeader(pHeader, pszSource);
  const auto source = vcm::OpenFile(pszSource, "rb");
  if (!bHeader || !source || IsSameFile(source.get(), pszTarget)) return false;
  if (!vcm::SeekTo(source.get(), *bHeader ? C_SpHeader::kBytes : 0)) return false;
  const auto target = vcm::OpenFile(pszTarget, "wb");
  if (!target) return false;
  // Kept: the result is true once the target is open, even when the copy fails, because callers
  // judge the stripped file by its contents. Pinned by
  // Strip_ToAFullDisk_StillReportsThatTheTargetCouldBeOpened.
  static_cast<void>(vcm::CopyRest(source.get(), target.get()));
  return true;
}

bool CopyWithSpHeader(const char* pszSource, const char* pszTarget, const C_SpHeader& header) {
  const auto source = vcm::OpenFile(pszSource, "rb");
  if (!source || IsSameFile(source.get(), pszTarget)) return false;
  auto target = vcm::OpenFile(pszTarget, "wb");
  if (!target) return false;
  const bool bWritten =
      WriteSpHeader(header, target.get()) && vcm::CopyRest(source.get(), target.get());
  return vcm::CloseChecked(std::move(target)) && bWritten;
}

unsigned short ReadSpWord22(const char* pszFileName) {
  return static_cast<unsigned short>(ReadAt(pszFileName, kOffsetID, sizeof(std::uint16_t)));
}

unsigned short ReadSpWord34(const char* pszFileName) {
  return static_cast<unsigned short>(ReadAt(pszFileName, kOffsetValue34, sizeof(std::uint16_t)));
}

// Kept: this reads 32 bits at offset 24, where an older layout had one field. Tools still ask for
// it, although the format word and half of the frequency are there now. Pinned by
// Dword24_HoldsTheFormatWordAndTheLowHalfOfTheFrequency.
unsigned int ReadSpDword24(const char* pszFileName) {
  return ReadAt(pszFileName, kOffsetFormat, sizeof(std::uint32_t));
}

bool WriteSpDword24(const char* pszFileName, unsigned int dwValue) {
  auto file = vcm::OpenFile(pszFileName, "r+b");
  if (!file || !vcm::SeekTo(file.get(), kOffsetFormat)) return false;
  vcm::C_ByteWriter writer;
  writer.U32(dwValue);
  const bool bWritten = vcm::WriteExact(file.get(), writer.Data());
  return vcm::CloseChecked(std::move(file)) && bWritten;
}
