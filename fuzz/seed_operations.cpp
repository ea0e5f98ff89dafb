// SPDX-License-Identifier: Apache-2.0
//
// Seeds for the fuzzers that take sequences of operations, chunks, texts or names.
#include <array>
#include <cstddef>

#include "ExampleSound.h"
#include "FuzzFile.h"
#include "RiffFile.h"
#include "Seeds.h"

namespace {

using Bytes = C_SeedBytes;

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

void AddNames(C_Seeds& seeds) {
  for (const char* pszName :
       {"speech.kst", "SPEECH.WAV", "a.b.mp3", "no_extension", ".vea", "x.", "x.MID"}) {
    seeds.AddText({"extension_table"}, pszName);
  }
}

// Operations that no writer of ours produces: each operation with a few different arguments.
void AddSequences(C_Seeds& seeds) {
  for (std::uint8_t byOperation = 0; byOperation < 20; ++byOperation) {
    for (std::uint8_t bySeed = 1; bySeed <= 4; ++bySeed) {
      Bytes operations;
      std::uint32_t dwState = bySeed;
      for (int i = 0; i < 120; ++i) {
        dwState = dwState * 1664525U + 1013904223U;
        operations.push_back(static_cast<std::uint8_t>(dwState >> (bySeed % 2 == 0 ? 24 : 29)));
        if (i % 9 == 0) operations.push_back(byOperation);
      }
      seeds.Add(
          {"event_tags", "heron_event_stream", "riff_roundtrip", "sp_header_files", "wav_data_ops"},
          operations);
    }
  }
}

// A gain ramp over more samples than one of the blocks has that it goes by, for signed and for
// unsigned samples: format, PCM, then the operation.
void AddRamps(C_Seeds& seeds) {
  for (std::uint8_t bySign = 0; bySign < 2; ++bySign) {
    seeds.Add({"wav_data_ops"},
              Bytes{1, 0x80, 0x3E, 0, bySign, 0, 0xFB, 0x08, 7, 0x3F, 1, 14, 0, 1, 0, 1, 3, 7, 1});
  }
}

// The heads of all types up to the largest that has a version, and some above.
void AddHeads(C_Seeds& seeds) {
  for (unsigned int dwType = 0; dwType < 260; ++dwType) {
    if (dwType > 40 && dwType % 16 > 4) continue;
    seeds.Add({"codec_heads"}, Bytes{1, static_cast<std::uint8_t>(dwType & 0xFF),
                                     static_cast<std::uint8_t>(dwType >> 8), 0x80, 0x3E, 0, 0});
  }
  seeds.Add({"codec_heads"},
            Bytes{1,    0x01, 0x80, 0x80, 0x3E, 0, 0, 1,  0x01, 0x11, 0, 0, 0, 0, 1,
                  0x01, 0x10, 0,    0,    0,    0, 0, 14, 0,    1,    0, 0, 0, 0, 0});
}

}  // namespace

void AddOperations(C_Seeds& seeds) {
  AddChunks(seeds);
  AddDescriptions(seeds);
  AddNames(seeds);
  AddSequences(seeds);
  AddHeads(seeds);
  AddRamps(seeds);
}
