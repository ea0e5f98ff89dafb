// SPDX-License-Identifier: Apache-2.0
//
// Asks what kind of file any bytes are, in each of the ways that there are, and opens them without
// loading: the answers must agree with each other and with the bytes.
//
//   scripts/fuzz.sh 60 file_kind
//
// Input: a whole file. Seeds: files of every kind of our own writers.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "FuzzFile.h"
#include "Require.h"
#include "RiffFile.h"
#include "WavFileFormat.h"
#include "file/SpHeader.h"
#include "sound/WavFileMaker.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

// The identifier of an SP header, read byte by byte; -1 when the bytes have no header.
int SlowID(Bytes bytes) {
  constexpr std::uint8_t abySignature[] = {0x00, 0xFF, 0x00, 0xFF};
  if (bytes.size() < 22 || std::memcmp(bytes.data(), abySignature, 4) != 0) return -1;
  const auto* pszText = reinterpret_cast<const char*>(&bytes[4]);
  const std::string_view text(pszText, strnlen(pszText, 16));
  if (text != "VOXELTRONIC SP" && text != "ORBITAL SPEECH") return -1;
  if (bytes[20] < 254 || bytes[21] != 2) return -1;
  return bytes.size() < 24 ? 0 : bytes[22] + 256 * bytes[23];
}

bool IsRiff(Bytes bytes, const char* pszForm) {
  return bytes.size() >= 12 && std::memcmp(bytes.data(), "RIFF", 4) == 0 &&
         std::memcmp(&bytes[8], pszForm, 4) == 0;
}

void CheckOpened(const char* pszPath, Bytes bytes, tagAudioFileType eKind) {
  C_WavFileFormat format;
  const C_WavFilePtr opened(format.OpenWavFile(pszPath));
  if (!opened) return;
  const bool bSound = IsRiff(bytes, "WAVE") || IsRiff(bytes, "VEMD");
  // Containers have no kind of their own: the coding type of their object says what they contain.
  Require(bSound || IsRiff(bytes, "VEFF") || eKind != AUDIO_FILE_UNKNOWN);
  Require(opened->GetWavInfo() != nullptr && opened->GetWavDataBuffer() == nullptr);
  Require(opened->GetFileLength() == bytes.size());
  static_cast<void>(opened->GetWavInfo()->GetTimeLength());
}

// The kinds that can be written have a class, which keeps what it is told.
void CheckMaker(std::uint16_t wKind, std::uint16_t wEncoded) {
  const auto eKind = static_cast<tagAudioFileType>(wKind);
  const auto made = vcm::MakeWavFile(eKind, static_cast<tagAudioFileType>(wEncoded));
  const bool bSound = wKind == 0x8001 || wKind == 0x1101;
  const bool bCodec = wKind == 14 || (wKind >= 32 && wKind <= 36);
  Require((made != nullptr) == (bSound || bCodec));
  if (bSound) Require(made->GetFileFormat() == eKind);
  if (bCodec) Require(made->GetCodingType() == wEncoded);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const Bytes bytes(pData, cbData);
  const C_FuzzFile file(bytes);
  C_WavFileFormat format;
  const tagAudioFileType eKind = format.GetFileFormat(file.Path());
  const bool bWave = format.IsWavFile(file.Path());
  const int nID = SlowID(bytes);
  Require(GetSpFileID(file.Path()) == (nID < 0 ? 65535 : nID));
  if (nID >= 0 && nID != 65535) {
    Require(eKind == static_cast<tagAudioFileType>(nID));
  } else {
    Require(eKind == (bWave ? AUDIO_FILE_WAVE : AUDIO_FILE_UNKNOWN));
  }
  Require(!bWave || IsRiff(bytes, "WAVE") || IsRiff(bytes, "VEMD"));
  Require(format.IsFileFormat(file.Path(), AUDIO_FILE_WAVE) == bWave);
  Require(!format.IsFileFormat(file.Path(), AUDIO_FILE_KESTREL));
  const bool bSupported = format.IsSupportedFormat(file.Path());
  Require(!bSupported || IsRiff(bytes, "WAVE"));
  CheckOpened(file.Path(), bytes, eKind);
  const auto wLength = static_cast<std::uint16_t>(cbData % 64);
  for (const int nKind : {wLength % 40, 0x8001, 0x1101}) {
    CheckMaker(static_cast<std::uint16_t>(nKind), wLength);
  }
  return 0;
}
