// SPDX-License-Identifier: Apache-2.0
//
// Makes the inputs that the fuzzers start from, with the library's own writers, so that they begin
// deep inside the formats. Each fuzzer has one folder. scripts/fuzz.sh runs this program; by hand:
//
//   build/fuzz/bin/make_seeds build/fuzz/seeds
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "FuzzFile.h"
#include "RiffFile.h"
#include "codec/HeronCodec.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::array<unsigned int, 8> kEncodedRates = {7200,  9600,  12000, 14400,
                                                       16000, 20000, 24000, 32000};

constexpr unsigned int kLowestRate = 4800;
constexpr unsigned int kRateStep = 800;

class C_Seeds {
 public:
  explicit C_Seeds(std::string strRoot) : m_strRoot(std::move(strRoot)) {}

  // Adds the same input for each of these fuzzers.
  void Add(std::initializer_list<const char*> fuzzers, std::span<const std::uint8_t> bytes) {
    for (const char* pszFuzzer : fuzzers) {
      const std::string strFolder = m_strRoot + "/" + pszFuzzer;
      std::filesystem::create_directories(strFolder);
      std::ofstream file(strFolder + "/" + std::to_string(m_nSeeds++), std::ios::binary);
      file.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
      if (!file.flush()) std::abort();
    }
  }
  void AddText(std::initializer_list<const char*> fuzzers, const std::string& strText) {
    Add(fuzzers, Bytes(strText.begin(), strText.end()));
  }

 private:
  std::string m_strRoot;
  int m_nSeeds = 0;
};

Bytes WaveFile(I_WavData& sound, tagAudioFileType eType) {
  const C_FuzzFile file;
  if (!sound.Convert(eType, file.Path(), true, false, nullptr, false, 0)) std::abort();
  return file.Bytes();
}

// Codec files are containers when they are written without encoding.
Bytes Container(I_WavData& sound, tagAudioFileType eType) {
  const C_FuzzFile file;
  if (!sound.Convert(eType, file.Path(), false, false, nullptr, true, 0)) std::abort();
  return file.Bytes();
}

// The payload of the first chunk of a RIFF file that has this identifier.
Bytes Payload(const Bytes& wave, const char* pszID) {
  const C_FuzzFile file(wave);
  C_RiffFile riff;
  if (!riff.Open(file.Path(), "WAVE")) std::abort();
  C_RiffChunk* pChunk = riff.FindChunk(pszID, 0);
  if (pChunk == nullptr) std::abort();
  Bytes payload(pChunk->GetDataLength());
  if (!pChunk->GetData(payload.data(), pChunk->GetDataLength(), 0)) std::abort();
  return payload;
}

void AddWaves(C_Seeds& seeds) {
  constexpr std::array<std::pair<unsigned short, unsigned short>, 6> kWidths = {
      {{8, 8}, {12, 16}, {16, 16}, {24, 24}, {24, 32}, {32, 32}}};
  for (const auto& [wBits, wStoreBits] : kWidths) {
    for (const unsigned short wChannels : {std::uint16_t{1}, std::uint16_t{2}, std::uint16_t{6}}) {
      const C_SoundPtr sound = ExampleSound({11025, wChannels, wBits, wStoreBits}, 320);
      seeds.Add({"wav_load", "factory"}, WaveFile(*sound, AUDIO_FILE_WAVE));
      AddAnnotations(*sound);
      seeds.Add({"wav_load", "factory", "riff_list"}, WaveFile(*sound, AUDIO_FILE_WAVE));
      seeds.Add({"wav_load", "riff_list"}, WaveFile(*sound, AUDIO_FILE_VEMD));
    }
  }
}

// Three whole blocks and a part of another, under the tag of each kind.
void AddCompressedWaves(C_Seeds& seeds) {
  for (const S_Blocks& blocks : OneOfEachKind()) {
    const Bytes encoded = ExamplePcm({8000, 1, 8, 8}, std::size_t{3} * blocks.wBlockAlign + 19);
    seeds.Add({"wav_load", "factory"}, CompressedWav(blocks, encoded).Take());
    seeds.Add({"wav_load"}, CompressedWav(blocks, encoded, "VEMD").Take());
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
    seeds.Add({"vef", "factory"}, Container(*sound, AUDIO_FILE_KESTREL));
    AddAnnotations(*sound);
    AddMarkOfTheUser(*sound);
    seeds.Add({"vef", "factory", "riff_list"}, Container(*sound, AUDIO_FILE_KESTREL));
  }
}

void AddChunks(C_Seeds& seeds) {
  const C_SoundPtr sound = ExampleSound({}, 320);
  AddAnnotations(*sound);
  const Bytes wave = WaveFile(*sound, AUDIO_FILE_WAVE);
  seeds.Add({"adtl"}, Payload(wave, "LIST"));
  seeds.Add({"smpl_cue"}, Payload(wave, "cue "));
  seeds.Add({"smpl_cue"}, Payload(wave, "smpl"));
  for (const char* pszLabel :
       {"u_3_7", "u_65535_0", "u__", "e_196615", "VX_Silence", "VX_PCM", "cue_end", "u-_1e_2"}) {
    seeds.AddText({"label_text"}, pszLabel);
  }
}

// A description holds the form and widths, channels, rate and five counts, then the counted fields
// and the samples.
void AddDescriptions(C_Seeds& seeds) {
  for (std::uint8_t byForm = 0; byForm < 16; ++byForm) {
    Bytes description = {byForm, 2, 0x80, 0x3E, 0, 0, 2, 1, 1, 1, 1};
    const Bytes pcm = ExamplePcm({}, 200);
    description.insert(description.end(), pcm.begin(), pcm.end());
    seeds.Add({"wav_write_read"}, description);
  }
}

Bytes KestrelStream(unsigned int dwBitRate, std::size_t nFrames) {
  const C_SoundPtr sound = ExampleSound({}, nFrames * 320);
  C_KestrelCodec codec;
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  if (!codec.LoadCodec(dwBitRate) ||
      !codec.Encode(sound.get(), dwBitRate, &pbyStream, &dwLength, nullptr)) {
    std::abort();
  }
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  return {pbyStream, pbyStream + dwLength};
}

Bytes WithHeader(const Bytes& stream, tagAudioFileType eType = AUDIO_FILE_KESTREL) {
  C_SpHeader header;
  header.SetID(static_cast<unsigned short>(eType));
  header.SetFreq(16000);
  const C_FuzzFile source(stream);
  const C_FuzzFile target;
  if (!CopyWithSpHeader(source.Path(), target.Path(), header)) std::abort();
  return target.Bytes();
}

// In the input of the coder's fuzzers, the first byte chooses a rate, and the rest is what they
// code.
Bytes Chosen(std::size_t nChoice, std::span<const std::uint8_t> rest) {
  Bytes bytes = {static_cast<std::uint8_t>(nChoice)};
  bytes.insert(bytes.end(), rest.begin(), rest.end());
  return bytes;
}

void AddStreams(C_Seeds& seeds) {
  constexpr std::size_t cbHead = 6;  // length and bit rate
  for (std::size_t i = 0; i < kEncodedRates.size(); ++i) {
    const Bytes stream = KestrelStream(kEncodedRates[i], 4);
    const std::size_t nChoice = (kEncodedRates[i] - kLowestRate) / kRateStep;
    seeds.Add({"kestrel_stream"}, stream);
    seeds.Add({"factory", "sp_header"}, WithHeader(stream));
    seeds.Add({"kestrel_frame"}, Chosen(nChoice, std::span(stream).subspan(cbHead)));
    seeds.Add({"kestrel_encode_decode"}, Chosen(i, ExamplePcm({}, 700)));
  }
}

Bytes HeronStream(I_WavData& sound, tagAudioFileType eType) {
  C_HeronCodec codec;
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  if (!codec.Encode(&sound, eType, nullptr, nullptr, &pbyStream, &dwLength)) std::abort();
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  return {pbyStream, pbyStream + dwLength};
}

// The first byte chooses one of these sample rates, in this order.
void AddHeronStreams(C_Seeds& seeds) {
  constexpr std::array<unsigned int, 6> kRates = {4000, 8000, 11025, 16000, 44100, 48000};
  for (std::size_t i = 0; i < kRates.size(); ++i) {
    const C_SoundPtr sound = ExampleSound({.dwSampleRate = kRates[i]}, 400);
    for (unsigned int dwType = kHeronTypes.dwFirst; dwType <= kHeronTypes.dwLast; ++dwType) {
      const Bytes stream = HeronStream(*sound, static_cast<tagAudioFileType>(dwType));
      seeds.Add({"heron_stream"}, Chosen(i, stream));
      if (kHeronSpTypes.Has(dwType) && kRates[i] == 16000) {
        seeds.Add({"factory", "sp_header"},
                  WithHeader(stream, static_cast<tagAudioFileType>(dwType)));
      }
    }
    AddAnnotations(*sound);
    seeds.Add({"heron_stream"}, Chosen(i, HeronStream(*sound, AUDIO_FILE_HERON_2BIT)));
  }
}

void AddNames(C_Seeds& seeds) {
  for (const char* pszName :
       {"speech.kst", "SPEECH.WAV", "a.b.mp3", "no_extension", ".vea", "x.", "x.MID"}) {
    seeds.AddText({"extension_table"}, pszName);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    static_cast<void>(std::fputs("usage: make_seeds FOLDER\n", stderr));
    return EXIT_FAILURE;
  }
  C_Seeds seeds(argv[1]);
  AddWaves(seeds);
  AddCompressedWaves(seeds);
  AddContainers(seeds);
  AddChunks(seeds);
  AddDescriptions(seeds);
  AddStreams(seeds);
  AddHeronStreams(seeds);
  AddNames(seeds);
  return EXIT_SUCCESS;
}
