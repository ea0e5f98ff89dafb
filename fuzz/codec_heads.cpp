// SPDX-License-Identifier: Apache-2.0
//
// Writes the codec head of every type and rate and takes it apart again, by a table of this
// fuzzer's own.
//
//   scripts/fuzz.sh 60 codec_heads
//
// Input: heads, each a type code and a rate of 32 bits.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FuzzFile.h"
#include "FuzzInput.h"
#include "Require.h"
#include "StdioFile.h"
#include "file/CodecHead.h"

namespace {

constexpr int kMostHeads = 16;

bool IsSoundFile(std::uint32_t dwType) {
  return dwType == 0x8001 || dwType == 0x1101 || dwType == 0x1001;
}

// -1 for a type that has no version.
int VersionOf(std::uint32_t dwType) {
  switch (dwType) {
    case 1:
    case 64:
    case 131:
    case 132:
    case 257:
      return 4096;
    case 3:
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
    case 11:
    case 12:
    case 13:
    case 14:
    case 15:
    case 16:
    case 18:
    case 19:
    case 48:
    case 129:
    case 130:
      return 0;
    default:
      break;
  }
  const bool bRange = (dwType >= 32 && dwType <= 38) || (dwType >= 80 && dwType <= 84);
  return bRange ? 0 : -1;
}

std::vector<std::uint8_t> Expected(std::uint32_t dwType, std::uint32_t dwRate) {
  std::vector<std::uint8_t> bytes;
  if (IsSoundFile(dwType)) return bytes;
  for (const std::uint32_t dwField : {dwType, dwRate}) {
    bytes.push_back(static_cast<std::uint8_t>(dwField & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(dwField >> 8 & 0xFF));
  }
  const int nVersion = VersionOf(dwType);
  if (nVersion < 0) return bytes;
  bytes.push_back(0);
  bytes.push_back(static_cast<std::uint8_t>(nVersion / 256));
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  const C_FuzzFile file;
  for (int i = 0; i < kMostHeads && !input.Ended(); ++i) {
    const std::uint32_t dwType = input.Flag() ? input.U16() : input.U32();
    const std::uint32_t dwRate = input.U32();
    vcm::C_FilePtr stream = vcm::OpenFile(file.Path(), "wb");
    Require(stream != nullptr);
    const bool bWritten =
        codechead::Write(stream.get(), static_cast<tagAudioFileType>(dwType), dwRate);
    Require(bWritten == (IsSoundFile(dwType) || VersionOf(dwType) >= 0));
    Require(vcm::CloseChecked(std::move(stream)));
    Require(file.Bytes() == Expected(dwType, dwRate));
  }
  return 0;
}
