// SPDX-License-Identifier: Apache-2.0
//
// Sounds that are the same in every run: a voice-like tone with noise in it, in any format, and
// everything that can be attached to a sound.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "interface/I_WavDataInfo.h"
#include "sound/WavData.h"

using C_SoundPtr = C_WavDataPtr;

struct S_SoundFormat {
  unsigned int dwSampleRate = 16000;
  unsigned short wChannels = 1;
  unsigned short wBits = 16;
  unsigned short wStoreBits = 16;
};

// Values between -0.8 and 0.8.
inline double ExampleValue(std::size_t nFrame) {
  const double dTime = static_cast<double>(nFrame) / 16000.0;
  const double dEnvelope = 0.5 + 0.3 * std::sin(dTime * 25.0);
  const auto dwNoise = static_cast<std::uint32_t>(nFrame) * 2654435761U;
  const double dNoise = static_cast<double>(dwNoise >> 16) / 65536.0 - 0.5;
  return dEnvelope * (0.8 * std::sin(dTime * 900.0) + 0.1 * std::sin(dTime * 9000.0)) +
         0.05 * dNoise;
}

// nFrames sample frames as the bytes that a file of that format holds; 8 bits and less are
// unsigned.
inline std::vector<std::uint8_t> ExamplePcm(const S_SoundFormat& format, std::size_t nFrames) {
  const double dScale = std::ldexp(1.0, format.wBits - 1);
  std::vector<std::uint8_t> pcm;
  for (std::size_t i = 0; i < nFrames * format.wChannels; ++i) {
    auto nValue = static_cast<std::int64_t>(ExampleValue(i / format.wChannels) * (dScale - 1.0));
    if (format.wBits <= 8) nValue += static_cast<std::int64_t>(dScale);
    for (int nShift = 0; nShift < format.wStoreBits; nShift += 8) {
      pcm.push_back(static_cast<std::uint8_t>(nValue >> nShift));
    }
  }
  return pcm;
}

inline C_SoundPtr ExampleSound(const S_SoundFormat& format, std::size_t nFrames) {
  C_SoundPtr sound(new C_WavData);
  sound->SetWavInfoData(format.dwSampleRate, 0, format.wChannels, format.wBits, format.wStoreBits,
                        format.wBits > 8);
  const auto pcm = ExamplePcm(format, nFrames);
  sound->SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size()));
  return sound;
}

// Two events, a silence segment, an uncompressed region, a sampler loop and an extra chunk. The
// sound must have more than 300 frames.
inline void AddAnnotations(I_WavData& sound) {
  sound.GetEventTagMgr()->AddEventBySamplePos(3, 7, 48, "", 0);
  sound.GetEventTagMgr()->AddEventBySamplePos(1, 2, 96, "", 0);
  sound.AddSilenceSegment(100, 149);
  sound.AddUncompressRegion(200, 299);
  void* pInfo = nullptr;
  sound.GetInfo(WAV_DATA_INFO_SAMPLER, &pInfo);
  static_cast<I_WavDataSamplerInfo*>(pInfo)->AddSampleLoop(1, LOOP_FORWARD, 10, 20, 0, 2);
  sound.GetInfo(WAV_DATA_INFO_EXTRA_CHUNK, &pInfo);
  static_cast<I_WavDataExtraChunkInfo*>(pInfo)->AddChunk("note", "kept as it is", 13);
}
