// SPDX-License-Identifier: Apache-2.0
#include "file/CodecHead.h"

#include <cstdint>
#include <optional>

#include "ByteReader.h"
#include "StdioFile.h"
#include "file/CodecVersionTable.h"

namespace codechead {
namespace {

bool HasNoHead(unsigned int dwType) {
  return dwType == AUDIO_FILE_WAVE || dwType == AUDIO_FILE_VEMD || dwType == 0x1001;
}

// Kept: the version is 0 for every library, because no codec is a library of its own here. Readers
// know 0 as the version of a codec that was built in. Pinned by
// CodecHead_OfALibrarysType_HasVersionZero.
constexpr unsigned short VersionOfLibrary(const char* /*pszLibraryName*/) { return 0; }

std::optional<unsigned short> VersionOf(unsigned int dwType) {
  for (const S_CodecVersionRow& row : kCodecVersions) {
    if (dwType < row.dwFirstType || dwType > row.dwLastType) continue;
    return row.pszLibraryName == nullptr ? kFixedCodecVersion
                                         : VersionOfLibrary(row.pszLibraryName);
  }
  return std::nullopt;
}

}  // namespace

// Kept: type and rate are written before the version is looked up, so a type without a version
// leaves four bytes in the file. Tools read from them which type was refused. Pinned by
// CodecHead_OfAnUnknownType_LeavesFourBytesAndFails.
bool Write(std::FILE* pFile, tagAudioFileType eType, unsigned int dwSampleRate) {
  if (HasNoHead(eType)) return true;
  vcm::C_ByteWriter writer;
  writer.U16(static_cast<std::uint16_t>(eType));
  writer.U16(static_cast<std::uint16_t>(dwSampleRate));
  const std::optional<unsigned short> wVersion = VersionOf(eType);
  if (wVersion) writer.U16(*wVersion);
  return vcm::WriteExact(pFile, writer.Data()) && wVersion.has_value();
}

}  // namespace codechead
