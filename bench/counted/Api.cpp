// SPDX-License-Identifier: Apache-2.0
//
// Reading and writing through the public interface, beside the same work done inside the library
// (Files.cpp, Frames.cpp, Heron.cpp).
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "LongSounds.h"
#include "ScratchFile.h"
#include "Subjects.h"
#include "voxplay.hpp"

namespace counted {
namespace {

constexpr std::size_t kPiece = 16000;  // frames that are read or written at a time
constexpr std::size_t kSeconds = 20;
constexpr std::size_t kSpeechSamples = kSeconds * 16000;
constexpr std::size_t kSpeechFrames = kSeconds * 50;

std::vector<std::int16_t> Speech() {
  std::ifstream file(VOXPLAY_SPEECH, std::ios::binary);
  if (!file) throw std::runtime_error("no " VOXPLAY_SPEECH);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  std::vector<std::int16_t> samples(kSpeechSamples);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const std::size_t nAt = 2 * i % (bytes.size() / 2 * 2);
    const auto byLow = static_cast<std::uint8_t>(bytes[nAt]);
    const auto byHigh = static_cast<std::uint8_t>(bytes[nAt + 1]);
    samples[i] = static_cast<std::int16_t>(static_cast<std::uint16_t>(byHigh << 8 | byLow));
  }
  return samples;
}

voxplay::Format FormatOf(voxplay_container eContainer, voxplay_codec eCodec, std::uint32_t dwBits) {
  voxplay::Format format{};
  format.container = static_cast<std::uint32_t>(eContainer);
  format.codec = static_cast<std::uint32_t>(eCodec);
  format.sample_rate = 16000;
  format.channels = 1;
  format.bits_per_sample = dwBits;
  return format;
}
const voxplay::Format kWav = FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16);
const voxplay::Format kKestrel = FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0);
const voxplay::Format kHeron = FormatOf(VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON, 2);

void WriteTimes(const C_ScratchFile& file, const voxplay::Format& format,
                std::span<const std::int16_t> samples, std::size_t nTimes) {
  voxplay::Writer writer(file.Path(), format);
  for (std::size_t n = 0; n < nTimes; ++n) {
    for (std::size_t nAt = 0; nAt < samples.size(); nAt += kPiece) {
      writer.write(samples.subspan(nAt, std::min(kPiece, samples.size() - nAt)));
    }
  }
  writer.finish();
}

void ReadTimes(const C_ScratchFile& file, std::size_t nTimes) {
  voxplay::Reader reader(file.Path());
  std::vector<std::int16_t> piece(kPiece);
  for (std::size_t n = 0; n < nTimes; ++n) {
    reader.seek(0);
    while (reader.read(std::span(piece)) != 0) Use(piece.data());
  }
}

constexpr unsigned int kPcmBytes = 4'096'000;
template <std::size_t nKind>
constexpr std::size_t kSamplesOf =
    longsounds::SamplesOfWholeBlocks(longsounds::kKinds[nKind].blocks, kPcmBytes);
template <std::size_t nKind>
void ReadLong(std::size_t nTimes) {
  ReadTimes(C_ScratchFile(longsounds::File(longsounds::kKinds[nKind], false, kPcmBytes)), nTimes);
}

template <const voxplay::Format& kFormat>
void Read(std::size_t nTimes) {
  const C_ScratchFile file;
  WriteTimes(file, kFormat, Speech(), 1);
  ReadTimes(file, nTimes);
}
template <const voxplay::Format& kFormat>
void Write(std::size_t nTimes) {
  WriteTimes(C_ScratchFile(), kFormat, Speech(), nTimes);
}

constexpr std::array kSubjects = {
    S_Subject{"api-read-16", "thousand", kSamplesOf<0> / 1000, 1, 4, &ReadLong<0>},
    S_Subject{"api-read-mulaw", "sample", kSamplesOf<1>, 1, 4, &ReadLong<1>},
    S_Subject{"api-read-alaw", "sample", kSamplesOf<2>, 1, 4, &ReadLong<2>},
    S_Subject{"api-read-dvi4", "sample", kSamplesOf<3>, 1, 4, &ReadLong<3>},
    S_Subject{"api-read-ms", "sample", kSamplesOf<4>, 1, 4, &ReadLong<4>},
    S_Subject{"api-read-kestrel", "frame", kSpeechFrames, 1, 3, &Read<kKestrel>},
    S_Subject{"api-read-heron", "sample", kSpeechSamples, 1, 3, &Read<kHeron>},
    S_Subject{"api-write-16", "thousand", kSpeechSamples / 1000, 2, 12, &Write<kWav>},
    S_Subject{"api-write-kestrel", "frame", kSpeechFrames, 1, 3, &Write<kKestrel>},
    S_Subject{"api-write-heron", "sample", kSpeechSamples, 1, 3, &Write<kHeron>},
};

}  // namespace

std::span<const S_Subject> ApiSubjects() { return kSubjects; }

}  // namespace counted
