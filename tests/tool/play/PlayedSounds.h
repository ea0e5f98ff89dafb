// SPDX-License-Identifier: Apache-2.0
//
// Files to play, and what must be heard of them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "TestSounds.h"
#include "voxplay.hpp"

inline void WriteSound(const std::string& strPath, voxplay::Format format,
                       const std::vector<std::int16_t>& samples,
                       const voxplay::Notes& notes = voxplay::Notes()) {
  voxplay::Writer writer(strPath, format);
  writer.set_notes(notes);
  writer.write(std::span(samples));
  writer.finish();
}

// A 16-bit WAV file. Returns its samples.
inline std::vector<std::int16_t> WriteWav(const std::string& strPath, std::uint32_t dwRate,
                                          std::uint32_t dwChannels, std::size_t nFrames) {
  const auto samples = SweepWithNoise(nFrames, dwRate, dwChannels);
  WriteSound(strPath,
             {VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, dwRate, dwChannels, 16, 0, 0, 0, 0},
             samples);
  return samples;
}

// A Kestrel file with an SP header. Returns what the decoder makes of it.
inline std::vector<std::int16_t> WriteKestrel(const std::string& strPath, std::size_t nFrames) {
  WriteSound(strPath, {VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 16000, 1, 0, 16000, 0, 0, 0},
             SweepWithNoise(nFrames, 16000));
  voxplay::Reader reader(strPath);
  std::vector<std::int16_t> samples(static_cast<std::size_t>(reader.info().frames));
  samples.resize(reader.read(std::span(samples)));
  return samples;
}

// The part of a sound with one channel.
inline std::vector<std::int16_t> Part(const std::vector<std::int16_t>& samples, std::size_t nBegin,
                                      std::size_t nEnd) {
  return {samples.begin() + static_cast<std::ptrdiff_t>(nBegin),
          samples.begin() + static_cast<std::ptrdiff_t>(nEnd)};
}

inline std::vector<float> AsFloats(const std::vector<std::int16_t>& samples) {
  std::vector<float> floats;
  floats.reserve(samples.size());
  for (const std::int16_t n : samples) floats.push_back(static_cast<float>(n) / 32768.0F);
  return floats;
}
