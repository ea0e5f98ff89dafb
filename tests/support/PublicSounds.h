// SPDX-License-Identifier: Apache-2.0
//
// Sounds that are written and read through the public interface.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "MemoryOutput.h"
#include "voxplay.hpp"

inline voxplay_format FormatOf(voxplay_container eContainer, voxplay_codec eCodec,
                               std::uint32_t dwBits = 0, std::uint32_t dwRate = 16000,
                               std::uint32_t dwChannels = 1) {
  voxplay_format format{};
  format.container = static_cast<std::uint32_t>(eContainer);
  format.codec = static_cast<std::uint32_t>(eCodec);
  format.sample_rate = dwRate;
  format.channels = dwChannels;
  format.bits_per_sample = dwBits;
  return format;
}

// What there is to write, by name.
struct S_PublicKind {
  std::string strName;
  voxplay_format format;
  std::uint32_t dwReadFlags = 0;
};
inline std::vector<S_PublicKind> PublicKinds() {
  return {
      {"Wav8", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 8)},
      {"Wav16", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16)},
      {"Wav24Stereo", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 24, 44100, 2)},
      {"Wav32", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 32)},
      {"WavFloat", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_FLOAT, 32)},
      {"Vemd16", FormatOf(VOXPLAY_CONTAINER_VEMD, VOXPLAY_CODEC_PCM, 16)},
      {"Vef16", FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM, 16)},
      {"VefKestrel", FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL), VOXPLAY_READ_STREAM},
      {"VefHeron3", FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_HERON, 3), VOXPLAY_READ_STREAM},
      {"SpKestrel", FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL)},
      {"SpHeron4", FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4)},
      {"HeadKestrel", FormatOf(VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_KESTREL)},
      {"HeadHeron2", FormatOf(VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON, 2)},
      {"BareKestrel", FormatOf(VOXPLAY_CONTAINER_BARE, VOXPLAY_CODEC_KESTREL)},
  };
}

// nFrames interleaved frames of a sound with some noise, different in every channel.
inline std::vector<std::int16_t> PublicSamples(std::size_t nFrames, std::size_t nChannels = 1) {
  std::vector<std::int16_t> samples(nFrames * nChannels);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    const auto dwNoise = static_cast<std::uint32_t>(n) * 2654435761U;
    const int nWave = static_cast<int>(n / nChannels % 160) * 100 - 8000;
    samples[n] = static_cast<std::int16_t>(nWave + static_cast<int>(dwNoise >> 22) +
                                           static_cast<int>(n % nChannels) * 500);
  }
  return samples;
}

inline std::vector<std::uint8_t> WrittenBytes(const voxplay_format& format,
                                              const std::vector<std::int16_t>& samples,
                                              const voxplay::NotesView& notes = {}) {
  C_MemoryOutput output;
  voxplay::Writer writer(output.Record(), format);
  writer.set_notes(notes);
  writer.write(std::span(samples));
  writer.finish();
  return output.Bytes();
}

// All samples that are left, read nPiece frames at a time.
template <typename T = std::int16_t>
std::vector<T> ReadRest(voxplay::Reader& reader, std::size_t nPiece = 1000) {
  std::vector<T> all;
  std::vector<T> piece(nPiece * reader.info().channels);
  while (const std::size_t nFrames = reader.read(std::span(piece))) {
    const auto nSamples = static_cast<std::ptrdiff_t>(nFrames * reader.info().channels);
    all.insert(all.end(), piece.begin(), piece.begin() + nSamples);
  }
  return all;
}
