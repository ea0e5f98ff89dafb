// SPDX-License-Identifier: Apache-2.0
//
// Seeds for the audio file service: the same short sound in every container and coding that the
// file library writes, and the files of our own writers.
#include <sndfile.h>

#include <array>
#include <vector>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "FuzzFile.h"
#include "Seeds.h"

namespace {

using Bytes = C_SeedBytes;

constexpr std::size_t kChoices = 16;

Bytes WithChoices(const Bytes& file, std::uint8_t byChoice) {
  Bytes input(kChoices, byChoice);
  input.insert(input.end(), file.begin(), file.end());
  return input;
}

// Empty for a combination that the file library does not write.
Bytes SoundFile(int nFormat, int nChannels, int nFrames) {
  SF_INFO info{};
  info.samplerate = 16000;
  info.channels = nChannels;
  info.format = nFormat;
  if (sf_format_check(&info) == 0) return {};
  const C_FuzzFile file;
  SNDFILE* pSound = sf_open(file.Path(), SFM_WRITE, &info);
  if (pSound == nullptr) return {};
  std::vector<short> samples;
  samples.reserve(static_cast<std::size_t>(nFrames) * static_cast<std::size_t>(nChannels));
  for (int i = 0; i < nFrames * nChannels; ++i) {
    samples.push_back(
        static_cast<short>(ExampleValue(static_cast<std::size_t>(i / nChannels)) * 30000));
  }
  sf_writef_short(pSound, samples.data(), nFrames);
  sf_close(pSound);
  return file.Bytes();
}

}  // namespace

void AddAudioFiles(C_Seeds& seeds) {
  seeds.Add({"audio_file"}, Bytes(3, 0));
  constexpr std::array<int, 10> kContainers = {
      SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64, SF_FORMAT_AIFF, SF_FORMAT_AU,
      SF_FORMAT_CAF, SF_FORMAT_FLAC,  SF_FORMAT_OGG,  SF_FORMAT_NIST, SF_FORMAT_MPEG};
  constexpr std::array<int, 18> kCodings = {
      SF_FORMAT_PCM_S8,         SF_FORMAT_PCM_16,    SF_FORMAT_PCM_24,   SF_FORMAT_PCM_32,
      SF_FORMAT_PCM_U8,         SF_FORMAT_FLOAT,     SF_FORMAT_DOUBLE,   SF_FORMAT_ULAW,
      SF_FORMAT_ALAW,           SF_FORMAT_IMA_ADPCM, SF_FORMAT_MS_ADPCM, SF_FORMAT_GSM610,
      SF_FORMAT_G721_32,        SF_FORMAT_VORBIS,    SF_FORMAT_OPUS,     SF_FORMAT_ALAC_16,
      SF_FORMAT_MPEG_LAYER_III, SF_FORMAT_DWVW_16};
  for (const int nContainer : kContainers) {
    for (const int nCoding : kCodings) {
      for (const int nChannels : {1, 2}) {
        const int nFrames = nContainer == SF_FORMAT_MPEG ? 4000 : 300;
        const Bytes file = SoundFile(nContainer | nCoding, nChannels, nFrames);
        if (file.empty() || file.size() > 8000) continue;
        seeds.Add({"audio_file"}, WithChoices(file, static_cast<std::uint8_t>(nChannels * 17)));
      }
    }
  }
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const Bytes encoded = ExamplePcm({8000, 1, 8, 8}, std::size_t{3} * blocks.wBlockAlign + 19);
    seeds.Add({"audio_file"}, WithChoices(CompressedWav(blocks, encoded).Take(), 1));
  }
  const C_SoundPtr sound = ExampleSound({11025, 6, 16, 16}, 320);
  AddAnnotations(*sound);
  seeds.Add({"audio_file"}, WithChoices(WaveFile(*sound, AUDIO_FILE_WAVE), 2));
}
