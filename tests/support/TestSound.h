// SPDX-License-Identifier: Apache-2.0
//
// 16-bit mono sounds from samples, and back.
#pragma once

#include <cstring>
#include <vector>

#include "ExampleSound.h"

inline C_SoundPtr MonoSound(const std::vector<short>& samples, unsigned int dwSampleRate = 16000) {
  C_SoundPtr sound(new C_WavData);
  const auto cbPcm = static_cast<unsigned int>(samples.size() * sizeof(short));
  sound->SetBuffer(samples.data(), cbPcm);
  sound->SetWavInfoData(dwSampleRate, cbPcm, 1, 16, 16, true);
  return sound;
}

// The PCM read as 16-bit samples, whatever the format says.
inline std::vector<short> SamplesOf(I_WavData* pIWavData) {
  std::vector<short> samples(pIWavData->GetBufferLength() / sizeof(short));
  if (!samples.empty()) {
    std::memcpy(samples.data(), pIWavData->GetBuffer(), samples.size() * sizeof(short));
  }
  return samples;
}
