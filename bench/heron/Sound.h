// SPDX-License-Identifier: Apache-2.0
//
// The sounds of the benchmark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct S_Sound {
  int nSampleRate = 0;  // Hz
  std::vector<std::int16_t> samples;
};

// Reads the sound of a file. Throws std::runtime_error, naming the file, unless it is 16-bit mono.
S_Sound ReadSound(const std::string& strPath);

// Writes a WAV file that contains only the sound. Throws std::runtime_error when it cannot.
void WriteSound(const S_Sound& sound, const std::string& strPath);
