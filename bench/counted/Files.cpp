// SPDX-License-Identifier: Apache-2.0
//
// Files, a sample or a frame a unit. What is converted is one second long, all in.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "ExampleSound.h"
#include "LongSounds.h"
#include "ScratchFile.h"
#include "Subjects.h"
#include "WavFileFormat.h"
#include "file/SpHeader.h"

namespace counted {
namespace {

constexpr std::size_t kSamples = 16000;
constexpr std::size_t kFrames = 50;

struct S_Releaser {
  void operator()(I_WavFile* pFile) const { pFile->Release(); }
};
using C_FilePtr = std::unique_ptr<I_WavFile, S_Releaser>;

C_FilePtr Load(const C_ScratchFile& file) {
  C_WavFileFormat format;
  C_FilePtr pFile(format.CreateWavFile(file.Path(), true, true, nullptr, nullptr));
  if (pFile == nullptr) throw std::runtime_error("a file does not load");
  return pFile;
}

void Save(I_WavData& sound, tagAudioFileType eType, const C_ScratchFile& file) {
  if (!sound.Convert(eType, file.Path(), true, false, nullptr, true, 0)) {
    throw std::runtime_error("a file cannot be written");
  }
}

void LoadTimes(const C_ScratchFile& file, std::size_t nTimes) {
  for (std::size_t n = 0; n < nTimes; ++n) Use(Load(file)->GetWavDataBuffer());
}

// Two million samples, so that opening the file does not count, and whole blocks of ADPCM.
constexpr unsigned int kPcmBytes = 4'096'000;

// nKind: in longsounds::kKinds.
template <std::size_t nKind>
constexpr std::size_t kSamplesOf =
    longsounds::SamplesOfWholeBlocks(longsounds::kKinds[nKind].blocks, kPcmBytes);
template <std::size_t nKind>
void LoadLong(std::size_t nTimes) {
  LoadTimes(C_ScratchFile(longsounds::File(longsounds::kKinds[nKind], false, kPcmBytes)), nTimes);
}

void SavePcm(std::size_t nTimes) {
  const C_SoundPtr sound = longsounds::Pcm(kPcmBytes);
  const C_ScratchFile file;
  for (std::size_t n = 0; n < nTimes; ++n) Save(*sound, AUDIO_FILE_WAVE, file);
}

// Opening alone; a sound of one sample costs next to nothing to load.
void OpenPcm(std::size_t nTimes) {
  const C_ScratchFile file;
  Save(*ExampleSound({}, 1), AUDIO_FILE_WAVE, file);
  LoadTimes(file, nTimes);
}

void WavToKestrel(std::size_t nTimes) {
  const C_ScratchFile from;
  const C_ScratchFile to;
  Save(*ExampleSound({}, kSamples), AUDIO_FILE_WAVE, from);
  for (std::size_t n = 0; n < nTimes; ++n) {
    if (!Load(from)->Convert(AUDIO_FILE_KESTREL, to.Path(), true, false, nullptr, false, 0)) {
      throw std::runtime_error("a file cannot be converted");
    }
  }
}
void KestrelToWav(std::size_t nTimes) {
  const C_ScratchFile from;
  const C_ScratchFile to;
  Save(*ExampleSound({}, kSamples), AUDIO_FILE_KESTREL, from);
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(kSamples);
  if (!PrependSpHeader(header, from.Path())) throw std::runtime_error("no header");
  for (std::size_t n = 0; n < nTimes; ++n) {
    if (!Load(from)->Convert(AUDIO_FILE_WAVE, to.Path(), true, false, nullptr, false, 0)) {
      throw std::runtime_error("a file cannot be converted");
    }
  }
}

constexpr std::array kSubjects = {
    S_Subject{"wav-open", "file", 1, 20, 120, &OpenPcm},
    S_Subject{"wav-load-16", "thousand", kSamplesOf<0> / 1000, 1, 4, &LoadLong<0>},
    S_Subject{"wav-load-mulaw", "sample", kSamplesOf<1>, 1, 4, &LoadLong<1>},
    S_Subject{"wav-load-alaw", "sample", kSamplesOf<2>, 1, 4, &LoadLong<2>},
    S_Subject{"wav-load-dvi4", "sample", kSamplesOf<3>, 1, 4, &LoadLong<3>},
    S_Subject{"wav-load-ms", "sample", kSamplesOf<4>, 1, 4, &LoadLong<4>},
    S_Subject{"wav-save-16", "thousand", kSamplesOf<0> / 1000, 1, 4, &SavePcm},
    S_Subject{"wav-to-kestrel", "frame", kFrames, 2, 12, &WavToKestrel},
    S_Subject{"kestrel-to-wav", "frame", kFrames, 2, 12, &KestrelToWav},
};

}  // namespace

std::span<const S_Subject> FileSubjects() { return kSubjects; }

}  // namespace counted
