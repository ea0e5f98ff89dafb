// SPDX-License-Identifier: Apache-2.0
//
// Opens any bytes as a file of any kind, through the entry point that the player uses.
//
//   cmake --preset fuzz && cmake --build --preset fuzz --target factory
//   build/fuzz/bin/factory -max_len=4096 -max_total_time=60 CORPUS_DIRECTORY
//
// Input: a whole file. Seeds: RIFF sound files and Kestrel files of our own writers.
#include <cstddef>
#include <cstdint>

#include "FuzzFile.h"
#include "LabelsArePlaced.h"
#include "Require.h"
#include "RiffFile.h"
#include "WavFileFormat.h"

namespace {

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
  const C_FuzzFile bytes({pData, cbData});
  if (!LabelsArePlaced(bytes.Path())) return -1;
  C_WavFileFormat format;
  const tagAudioFileType eKind = format.GetFileFormat(bytes.Path());
  Require(format.IsFileFormat(bytes.Path(), AUDIO_FILE_WAVE) == format.IsWavFile(bytes.Path()));
  static_cast<void>(format.IsSupportedFormat(bytes.Path()));

  const C_WavFilePtr opened(format.OpenWavFile(bytes.Path()));
  if (opened) {
    // Containers have no kind of their own: the coding type of their object says what they contain.
    C_RiffFile riff;
    Require(eKind != AUDIO_FILE_UNKNOWN || riff.Open(bytes.Path(), "VEFF"));
    Require(opened->GetWavDataBuffer() == nullptr);
    Require(opened->GetFileLength() == cbData);
  }
  g_qwHeard = 0;
  const C_WavFilePtr loaded(format.CreateWavFile(bytes.Path(), true, true, nullptr, &Hear));
  Require(opened || !loaded);
  if (!loaded) return 0;
  CheckObject(*loaded);
  // The object of a codec file has no file format; the header says what it is.
  if (eKind == AUDIO_FILE_KESTREL) Require(g_qwHeard == loaded->GetWavData()->GetBufferLength());
  return 0;
}
