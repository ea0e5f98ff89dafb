// SPDX-License-Identifier: Apache-2.0
//
// Sounds for tests of the program, written through the public interface.
#pragma once

#include <sys/resource.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include "PublicSounds.h"
#include "Sanitized.h"
#include "voxplay.hpp"

// Keeps a program that is being started from taking more memory of its own than this. Programs with
// a sanitizer need more for themselves, and are let alone.
inline void LimitOwnMemory(rlim_t cbMost) {
  const rlimit limit = {cbMost, cbMost};
  if (!kSanitized) setrlimit(RLIMIT_DATA, &limit);
}

// Eighty megabytes of samples, made and written piece by piece.
inline void WriteLongWav(const std::string& strPath) {
  constexpr int kPieces = 400;
  voxplay::Writer writer(strPath, FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 48000));
  std::vector<std::int16_t> piece(100'000);
  for (std::size_t n = 0; n < piece.size(); ++n) piece[n] = static_cast<std::int16_t>(n * 7);
  for (int i = 0; i < kPieces; ++i) writer.write(std::span(piece));
  writer.finish();
}

inline std::vector<std::int16_t> SineSamples(std::size_t nFrames, double dHz, double dRate,
                                             double dAmplitude) {
  std::vector<std::int16_t> samples(nFrames);
  for (std::size_t n = 0; n < nFrames; ++n) {
    const double dAngle = 2 * std::numbers::pi * dHz * static_cast<double>(n) / dRate;
    samples[n] = static_cast<std::int16_t>(std::lround(dAmplitude * std::sin(dAngle)));
  }
  return samples;
}

// The same on every machine.
inline std::vector<std::int16_t> NoiseSamples(std::size_t nFrames, std::int32_t nMost,
                                              std::uint32_t dwState = 1) {
  std::vector<std::int16_t> samples(nFrames);
  for (std::int16_t& nSample : samples) {
    dwState = dwState * 1664525U + 1013904223U;
    const auto nRange = static_cast<std::uint32_t>(2 * nMost + 1);
    nSample =
        static_cast<std::int16_t>(static_cast<std::int32_t>((dwState >> 8U) % nRange) - nMost);
  }
  return samples;
}

inline void WriteWav(const std::string& strPath, const std::vector<std::int16_t>& samples,
                     std::uint32_t dwRate = 16000, std::uint32_t dwChannels = 1,
                     const voxplay::NotesView& notes = {},
                     voxplay_container eContainer = VOXPLAY_CONTAINER_WAV) {
  voxplay::Writer writer(strPath, FormatOf(eContainer, VOXPLAY_CODEC_PCM, 16, dwRate, dwChannels));
  writer.set_notes(notes);
  writer.write(std::span(samples));
  writer.finish();
}
