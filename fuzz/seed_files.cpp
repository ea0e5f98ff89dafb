// SPDX-License-Identifier: Apache-2.0
//
// Seeds that are whole files: RIFF sounds, compressed sounds, containers.
#include <array>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "FuzzFile.h"
#include "Seeds.h"
#include "codec/HeronCodec.h"

C_SeedBytes WaveFile(I_WavData& sound, tagAudioFileType eType) {
  const C_FuzzFile file;
  if (!sound.Convert(eType, file.Path(), true, false, nullptr, false, 0)) std::abort();
  return file.Bytes();
}

namespace {

using Bytes = C_SeedBytes;

// Codec files are containers when they are written without encoding.
Bytes Container(I_WavData& sound, tagAudioFileType eType) {
  const C_FuzzFile file;
  if (!sound.Convert(eType, file.Path(), false, false, nullptr, true, 0)) std::abort();
  return file.Bytes();
}

void AddWaves(C_Seeds& seeds) {
  constexpr std::array<std::pair<unsigned short, unsigned short>, 6> kWidths = {
      {{8, 8}, {12, 16}, {16, 16}, {24, 24}, {24, 32}, {32, 32}}};
  for (const auto& [wBits, wStoreBits] : kWidths) {
    for (const unsigned short wChannels : {std::uint16_t{1}, std::uint16_t{2}, std::uint16_t{6}}) {
      const C_SoundPtr sound = ExampleSound({11025, wChannels, wBits, wStoreBits}, 320);
      seeds.Add({"wav_load", "factory", "file_kind", "api_reader", "api_probe"},
                WaveFile(*sound, AUDIO_FILE_WAVE));
      AddAnnotations(*sound);
      seeds.Add({"wav_load", "factory", "file_kind", "riff_list"},
                WaveFile(*sound, AUDIO_FILE_WAVE));
      seeds.Add({"wav_load", "file_kind", "riff_list"}, WaveFile(*sound, AUDIO_FILE_VEMD));
    }
  }
}

// Three whole blocks and a part of another, under the tag of each kind.
void AddCompressedWaves(C_Seeds& seeds) {
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const Bytes encoded = ExamplePcm({8000, 1, 8, 8}, std::size_t{3} * blocks.wBlockAlign + 19);
    seeds.Add({"wav_load", "factory", "file_kind", "api_reader", "api_probe"},
              CompressedWav(blocks, encoded).Take());
    seeds.Add({"wav_load", "file_kind"}, CompressedWav(blocks, encoded, "VEMD").Take());
  }
}

// A cue point, a label and a text of the user's, with an identifier that an event will need as
// well.
void AddMarkOfTheUser(I_WavData& sound) {
  void* pInfo = nullptr;
  sound.GetInfo(WAV_DATA_INFO_CUE, &pInfo);
  static_cast<I_WavDataCueInfo*>(pInfo)->AddCuePoint(1, 30, 0x61746164, 0, 0, 30);
  sound.GetInfo(WAV_DATA_INFO_LIST, &pInfo);
  static_cast<I_WavDataListInfo*>(pInfo)->AddLabel(1, "Verse");
  static_cast<I_WavDataListInfo*>(pInfo)->AddLtxt(1, 20, "rgn ");
}

void AddContainers(C_Seeds& seeds) {
  for (const unsigned short wChannels : {std::uint16_t{1}, std::uint16_t{2}}) {
    const C_SoundPtr sound = ExampleSound({16000, wChannels, 16, 16}, 320);
    seeds.Add({"vef", "factory", "file_kind", "api_reader"}, Container(*sound, AUDIO_FILE_KESTREL));
    AddAnnotations(*sound);
    AddMarkOfTheUser(*sound);
    seeds.Add({"vef", "factory", "file_kind", "riff_list"}, Container(*sound, AUDIO_FILE_KESTREL));
  }
}

// A file to convert, after the kind and the options.
void AddConversions(C_Seeds& seeds) {
  for (std::uint8_t byKind = 0; byKind < 8; ++byKind) {
    for (std::uint8_t byOptions = 0; byOptions < 8; ++byOptions) {
      const auto wChannels = static_cast<unsigned short>(1 + byOptions % 3);
      const auto wBits = static_cast<unsigned short>(byKind % 2 == 0 ? 16 : 8);
      const std::size_t nFrames = byOptions % 2 == 0 && wBits == 8 ? 620 : 200;
      const C_SoundPtr sound = ExampleSound({16000, wChannels, wBits, wBits}, nFrames / wChannels);
      if (byOptions % 2 == 0 && wBits == 8 && wChannels < 3) AddAnnotations(*sound);
      Bytes input = {byKind, static_cast<std::uint8_t>(byOptions + byKind % 4 * 8)};
      const Bytes file = byOptions == 7 ? Container(*sound, AUDIO_FILE_KESTREL)
                                        : WaveFile(*sound, AUDIO_FILE_WAVE);
      input.insert(input.end(), file.begin(), file.end());
      seeds.Add({"conversion"}, input);
    }
  }
}

}  // namespace

void AddFiles(C_Seeds& seeds) {
  AddWaves(seeds);
  AddCompressedWaves(seeds);
  AddContainers(seeds);
  AddConversions(seeds);
}
