// SPDX-License-Identifier: Apache-2.0
//
// Checks, opens and loads any bytes as a RIFF sound file. What was loaded is written and loaded
// again, and must be the same.
//
//   cmake --preset fuzz && cmake --build --preset fuzz --target wav_load
//   build/fuzz/bin/wav_load -max_len=4096 -max_total_time=60 CORPUS_DIRECTORY
//
// Input: a whole file. Seeds: files of our own writer, one per width and mix of chunks.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FuzzFile.h"
#include "LabelsArePlaced.h"
#include "Require.h"
#include "SoundsAreEqual.h"
#include "file/WavFile.h"

namespace {

bool Load(C_WavFile& file, const C_FuzzFile& bytes) {
  return file.LoadByName(bytes.Path(), true, nullptr, nullptr);
}
bool Write(C_WavFile& file, const C_FuzzFile& bytes) {
  return file.WriteFile(bytes.Path(), true, false, nullptr, false, 0);
}

// Claimed lengths beyond the file are believed up to a bound. Filling megabytes with zeros shows
// nothing that a few kilobytes do not.
bool IsSlow(I_WavInfo& info, std::size_t cbFile) {
  constexpr std::size_t kQuick = 1U << 16;
  return info.GetByteLength() > cbFile + kQuick &&
         info.GetByteLength() <= cbFile + C_WavFile::kMaxMissingBytes;
}

// The sound is the same after it is written and read. Written once more, the file is the same too.
void CheckRoundTrip(C_WavFile& file) {
  const C_FuzzFile first;
  const C_FuzzFile second;
  if (!Write(file, first)) {
    // Samples of 12 bits that are stored in 12 bits cannot be converted to the 16 that would be
    // written.
    Require(file.GetWavInfo()->GetBitsPerSample() == 12);
    return;
  }
  C_WavFile again;
  Require(Load(again, first));
  Require(again.GetFileFormat() == file.GetFileFormat());
  Require(SoundsAreEqual(*file.GetWavData(), *again.GetWavData()));
  Require(Write(again, second) && first.Bytes() == second.Bytes());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const C_FuzzFile bytes({pData, cbData});
  C_WavFile file;
  const bool bOpens = file.OpenByName(bytes.Path());
  Require(file.CheckFormat(bytes.Path(), false) || !bOpens);
  Require(file.GetWavDataBuffer() == nullptr);
  if (!bOpens) return 0;
  if (!LabelsArePlaced(file)) return -1;
  if (IsSlow(*file.GetWavInfo(), cbData)) return 0;
  if (!file.LoadData(true, nullptr, nullptr)) return 0;
  Require(file.GetFileLength() == cbData);
  CheckRoundTrip(file);
  return 0;
}
