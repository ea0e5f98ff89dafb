// SPDX-License-Identifier: Apache-2.0
//
// A voice-like sound made of integers only: machines may round a sine or a sum of products
// differently.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ByteReader.h"
#include "sound/WavData.h"

// -16384..16383; a period has 65,536 steps.
constexpr std::int32_t Triangle(std::uint32_t dwPhase) {
  const auto nPhase = static_cast<std::int32_t>(dwPhase & 0xFFFFU);
  return (nPhase < 0x8000 ? nPhase : 0xFFFF - nPhase) - 0x4000;
}

// Swells and fades, with noise in it; its loudest parts clip.
inline std::vector<std::int16_t> Voice(std::size_t nSamples) {
  std::vector<std::int16_t> samples(nSamples);
  std::uint32_t dwNoise = 1;
  for (std::uint32_t n = 0; n < nSamples; ++n) {
    dwNoise = dwNoise * 1664525U + 1013904223U;
    const std::int32_t nLoudness = Triangle(n * 9) + 0x4000;
    const std::int32_t nTone = Triangle(n * 450) + Triangle(n * 3700) / 3 + Triangle(n * 15000) / 8;
    const std::int32_t nNoise = static_cast<std::int32_t>(dwNoise >> 23) - 256;
    const std::int32_t nSample = nLoudness / 16 * nTone / 1024 + nNoise;
    samples[n] = static_cast<std::int16_t>(std::clamp(nSample, -32768, 32767));
  }
  return samples;
}

struct S_VoiceFormat {
  unsigned int dwSampleRate = 16000;
  unsigned short wChannels = 1;
  unsigned short wBits = 16;
  unsigned short wStoreBits = 16;
};

// The same as a sound of this format. 8 bits and less are unsigned; bits below the voice's sixteen
// repeat its upper bits.
inline C_WavDataPtr VoiceSound(const S_VoiceFormat& format, std::size_t nFrames) {
  const auto voice = Voice(nFrames * format.wChannels);
  vcm::C_ByteWriter pcm;
  for (const std::int16_t nSample : voice) {
    const auto dwUpper = static_cast<std::uint32_t>(static_cast<std::uint16_t>(nSample));
    std::uint32_t dwValue = (dwUpper << 16 | dwUpper) >> (32 - format.wBits);
    if (format.wBits <= 8) dwValue ^= 1U << (format.wBits - 1U);
    for (unsigned int nShift = 0; nShift < format.wStoreBits; nShift += 8) {
      pcm.U8(static_cast<std::uint8_t>(dwValue >> nShift));
    }
  }
  C_WavDataPtr sound(new C_WavData);
  sound->SetBuffer(pcm.Data().data(), static_cast<unsigned int>(pcm.Data().size()));
  sound->SetWavInfoData(format.dwSampleRate, static_cast<unsigned int>(pcm.Data().size()),
                        format.wChannels, format.wBits, format.wStoreBits, format.wBits > 8);
  return sound;
}
