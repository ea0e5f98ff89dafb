// SPDX-License-Identifier: Apache-2.0
//
// 16-bit mono sounds from samples, and back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ByteReader.h"
#include "ExampleSound.h"

inline C_SoundPtr MonoSound(const std::vector<short>& samples, unsigned int dwSampleRate = 16000) {
  C_SoundPtr sound(new C_WavData);
  vcm::C_ByteWriter pcm;
  for (const short nSample : samples) pcm.U16(static_cast<std::uint16_t>(nSample));
  const auto cbPcm = static_cast<unsigned int>(pcm.Data().size());
  sound->SetBuffer(pcm.Data().data(), cbPcm);
  sound->SetWavInfoData(dwSampleRate, cbPcm, 1, 16, 16, true);
  return sound;
}

// The PCM read as 16-bit samples, whatever the format says.
inline std::vector<short> SamplesOf(I_WavData* pIWavData) {
  const std::size_t cbPcm = pIWavData->GetBufferLength();
  std::vector<short> samples(cbPcm / sizeof(short));
  vcm::C_ByteReader pcm({pIWavData->GetBuffer(), cbPcm});
  for (short& nSample : samples) nSample = pcm.I16();
  return samples;
}
