// SPDX-License-Identifier: Apache-2.0
//
// Checks, opens and loads any bytes as a RIFF sound file. What was loaded is written and loaded
// again, and must be the same.
//
//   scripts/fuzz.sh 60 wav_load
//
// Input: a whole file. Seeds: files of our own writer, one per width and mix of chunks.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "FuzzFile.h"
#include "LabelsArePlaced.h"
#include "Require.h"
#include "SoundsAreEqual.h"
#include "compressed/WavFileCodecInfo.h"
#include "file/WavFile.h"

namespace {

bool Load(C_WavFile& file, const C_FuzzFile& bytes) {
  return file.LoadByName(bytes.Path(), true, nullptr, nullptr);
}
bool Write(C_WavFile& file, const C_FuzzFile& bytes) {
  return file.WriteFile(bytes.Path(), true, false, nullptr, false, 0);
}

// A file of a kilobyte may declare megabytes: PCM that it lacks, or blocks of ADPCM that are short.
// Filling those with zeros shows nothing that a few kilobytes do not, so only a few files of a
// certain length may. What declares still more is refused at once.
bool IsSlow(I_WavInfo& info, std::size_t cbFile) {
  constexpr std::size_t kQuick = 1U << 13;
  constexpr std::size_t kRefused = 1U << 28;
  return info.GetByteLength() > cbFile + kQuick && info.GetByteLength() <= kRefused &&
         cbFile % 256 != 0;
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

// A format record that is taken says what its bytes say.
void CheckRecord(std::span<const std::uint8_t> payload) {
  C_WavFileCodecInfo info;
  if (!info.SetFormat(payload)) {
    Require(info.GetRecord().empty() && info.GetFormatTag() == WAVE_TAG_NONE);
    return;
  }
  const auto record = info.GetRecord();
  Require(record.size() <= payload.size());
  Require(std::equal(record.begin(), record.end(), payload.begin()));
  Require(info.GetFormatTag() == record[0] + 256 * record[1]);
  Require(info.GetPCMWAVEFORMAT().wChannels == record[2] + 256 * record[3]);
  Require(info.GetWAVEFORMATEX().pcm.wChannels == info.GetPCMWAVEFORMAT().wChannels);
  Require(info.GetDVIADPCMInfo().wSamplesPerBlock == info.GetSamplesPerBlock());
  const S_MSAdpcmInfo pairs = info.GetMSADPCMInfo();
  if (info.GetFormatTag() != WAVE_TAG_MS_ADPCM) return;
  for (const int nPair : {0, 6, 255}) {
    const auto pair = info.GetMSADPCMCoefficients(static_cast<std::uint8_t>(nPair));
    const auto& all = pairs.coefficients[static_cast<std::size_t>(nPair)];
    Require(pair.nFirst == all.nFirst && pair.nSecond == all.nSecond);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  // Where our own writers put the format.
  constexpr std::size_t kFormatPayload = 20;
  if (cbData > kFormatPayload) CheckRecord(std::span(pData, cbData).subspan(kFormatPayload));
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
