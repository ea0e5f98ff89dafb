// SPDX-License-Identifier: Apache-2.0
//
// Loads any bytes as a file of any kind, through the entry point that the player uses.
//
//   scripts/fuzz.sh 60 factory
//
// Input: a whole file. Seeds: RIFF sound files and Kestrel files of our own writers.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "FuzzFile.h"
#include "LabelsArePlaced.h"
#include "Require.h"
#include "WavFileFormat.h"
#include "file/WavFile.h"

namespace {

constexpr std::size_t kMostStreamBytes = 90;

// Only files that begin like RIFF may hold labels and long sounds.
bool IsBareStream(std::span<const std::uint8_t> bytes) { return bytes.empty() || bytes[0] != 'R'; }

bool HasLabels(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kList = "LIST";
  return std::search(bytes.begin(), bytes.end(), kList.begin(), kList.end()) != bytes.end();
}

// A sound that its own class refuses is refused by every other class as well. Asking all of them
// each time would take most of the time.
bool IsRefusedSound(const char* pszPath, std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kForm = "WAVE";
  if (bytes.size() < 12 || !std::equal(kForm.begin(), kForm.end(), bytes.begin() + 8)) return false;
  C_WavFile file;
  return !file.CheckFormat(pszPath, false);
}

std::uint64_t g_qwHeard = 0;
void Hear(void* pData, unsigned int dwLength) {
  Require(pData != nullptr);
  g_qwHeard += dwLength;
}

void CheckObject(I_WavFile& file) {
  Require(file.GetWavInfo() != nullptr);
  Require(file.GetWavInfo()->GetByteLength() == file.GetWavData()->GetBufferLength());
  static_cast<void>(file.GetWavInfo()->GetTimeLength());
  static_cast<void>(file.GetWavInfo()->GetSampleSize());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const std::span input(pData, cbData);
  // Streams have fuzzers of their own. Decoding a long one here would show only that it is long.
  const std::span file =
      IsBareStream(input) ? input.first(std::min(cbData, kMostStreamBytes)) : input;
  const C_FuzzFile bytes(file);
  if (HasLabels(file) && !LabelsArePlaced(bytes.Path())) return -1;
  if (IsRefusedSound(bytes.Path(), file) && cbData % 8 != 0) return 0;
  C_WavFileFormat format;
  g_qwHeard = 0;
  const C_WavFilePtr loaded(format.CreateWavFile(bytes.Path(), true, true, nullptr, &Hear));
  if (!loaded) return 0;
  CheckObject(*loaded);
  // The object of a codec file has no file format; its coding type says what it is.
  const bool bKestrel = IsBareStream(file) && loaded->GetCodingType() == AUDIO_FILE_KESTREL;
  if (bKestrel) Require(g_qwHeard == loaded->GetWavData()->GetBufferLength());
  // What loads also opens. Asking each time would take a third of the time.
  if (cbData % 4 != 0) return 0;
  Require(C_WavFilePtr(format.OpenWavFile(bytes.Path())) != nullptr);
  if (bKestrel) Require(format.GetFileFormat(bytes.Path()) == AUDIO_FILE_KESTREL);
  return 0;
}
