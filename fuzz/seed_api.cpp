// SPDX-License-Identifier: Apache-2.0
//
// Seeds for the fuzzers of the public interface.
#include <cstddef>
#include <cstdint>

#include "PublicSounds.h"
#include "Seeds.h"

namespace {

voxplay::Notes SomeNotes() {
  voxplay::Notes notes;
  notes.add(voxplay::Event{20, 3, 7, 1, nullptr});
  notes.add_silence({30, 10});
  notes.add_region({50, 10});
  notes.add(voxplay::Cue{9, 40, {'d', 'a', 't', 'a'}, 0, 0, 40});
  notes.add(voxplay::Label{9, {'l', 'a', 'b', 'l'}, "mark"});
  notes.add(voxplay::RegionText{9, 5, {'r', 'g', 'n', ' '}, 1, 2, 3, 4, "text"});
  notes.add(voxplay::Loop{9, 0, 5, 60, 0, 2});
  notes.add(voxplay::Chunk{{'f', 'u', 'z', 'z'}, "odd", 3});
  return notes;
}

void AddSounds(C_Seeds& seeds) {
  for (const auto& kind : PublicKinds()) {
    // Of Heron, short sounds are coded many times over.
    const std::size_t nFrames = kind.format.codec == VOXPLAY_CODEC_KESTREL ? 1300 : 100;
    const auto samples = PublicSamples(nFrames, kind.format.channels);
    const auto bytes = WrittenBytes(kind.format, samples, SomeNotes());
    seeds.Add({"api_reader", "api_probe"}, bytes);
    auto longer = bytes;
    for (std::uint8_t byChoice = 0; byChoice < 8; ++byChoice) {
      longer.push_back(byChoice);  // how it is read depends on the last byte
      seeds.Add({"api_reader"}, longer);
    }
  }
}

// Bytes that are taken as formats, notes and samples, or as frames.
void AddChoices(C_Seeds& seeds) {
  for (std::uint32_t dwSeed = 1; dwSeed <= 64; ++dwSeed) {
    C_SeedBytes bytes;
    std::uint32_t dwRandom = dwSeed;
    for (std::size_t n = 0; n < 40 + dwSeed * 4; ++n) {
      dwRandom = dwRandom * 1664525U + 1013904223U;
      bytes.push_back(static_cast<std::uint8_t>(dwRandom >> 24));
    }
    seeds.Add({"api_writer", "api_kestrel"}, bytes);
  }
}

}  // namespace

void AddApi(C_Seeds& seeds) {
  AddSounds(seeds);
  AddChoices(seeds);
}
