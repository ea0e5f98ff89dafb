// SPDX-License-Identifier: Apache-2.0
//
// Sound files for tests of voxtool, and what is in the files that it writes.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "PublicSounds.h"
#include "voxplay.hpp"

namespace tool::test {

inline constexpr double kTurn = 6.283185307179586;

// One channel of a sine of dLevel, 1 being full scale.
inline std::vector<float> Sine(std::size_t nFrames, double dHertz, double dRate,
                               double dLevel = 0.5) {
  std::vector<float> samples(nFrames);
  for (std::size_t n = 0; n < nFrames; ++n) {
    samples[n] =
        static_cast<float>(dLevel * std::sin(kTurn * dHertz * static_cast<double>(n) / dRate));
  }
  return samples;
}

// The level of the part of the samples that has this frequency: 0.5 for Sine(..., 0.5), whatever
// its phase.
inline double LevelAt(std::span<const float> samples, double dHertz, double dRate) {
  double dReal = 0.0;
  double dImaginary = 0.0;
  for (std::size_t n = 0; n < samples.size(); ++n) {
    const double dAngle = kTurn * dHertz * static_cast<double>(n) / dRate;
    dReal += static_cast<double>(samples[n]) * std::cos(dAngle);
    dImaginary += static_cast<double>(samples[n]) * std::sin(dAngle);
  }
  return 2.0 * std::hypot(dReal, dImaginary) / static_cast<double>(samples.size());
}

template <typename Sample>
void WriteSound(const std::string& strPath, const voxplay::Format& format,
                const std::vector<Sample>& samples, const voxplay::NotesView& notes = {}) {
  voxplay::Writer writer(strPath, format);
  writer.set_notes(notes);
  writer.write(std::span(samples));
  writer.finish();
}

struct S_Sound {
  voxplay::Info info{};
  voxplay::Notes notes;
  std::vector<float> samples;
};
inline S_Sound ReadSound(const std::string& strPath, std::uint32_t dwFlags = 0) {
  voxplay::Reader reader(strPath, dwFlags);
  return {reader.info(), voxplay::Notes(reader.notes()), ReadRest<float>(reader)};
}
template <typename Sample>
std::vector<Sample> SamplesIn(const std::string& strPath, std::uint32_t dwFlags = 0) {
  voxplay::Reader reader(strPath, dwFlags);
  return ReadRest<Sample>(reader);
}

// Two events, silence, a region, a cue point with label and text, a loop and a chunk. The sound
// must have more than 4000 frames.
inline voxplay::Notes SomeNotes() {
  voxplay::Notes notes;
  notes.add(voxplay::Event{1000, 3, 7, 0, nullptr});
  notes.add(voxplay::Event{2000, 1, 2, 0, nullptr});
  notes.add_silence({100, 60});
  notes.add_region({3000, 500});
  notes.add(voxplay::Cue{77, 400, {'d', 'a', 't', 'a'}, 0, 0, 400});
  notes.add(voxplay::Label{77, {'l', 'a', 'b', 'l'}, "verse"});
  notes.add(voxplay::RegionText{77, 50, {'r', 'g', 'n', ' '}, 0, 0, 0, 0, "words"});
  notes.add(voxplay::Loop{77, 0, 400, 799, 0, 2});
  notes.add(voxplay::Chunk{{'n', 'o', 't', 'e'}, "kept", 4});
  return notes;
}

}  // namespace tool::test
