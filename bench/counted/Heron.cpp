// SPDX-License-Identifier: Apache-2.0
//
// The Heron frame coder on recorded speech at 16 kHz, over and over again; a sample a unit.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "Subjects.h"
#include "heron/Decoder.h"
#include "heron/SoundCoder.h"

namespace counted {
namespace {

constexpr int kSampleRate = 16000;
constexpr std::size_t kSecond = kSampleRate;

std::vector<std::int16_t> Speech(std::size_t nSeconds) {
  std::ifstream file(VOXPLAY_SPEECH, std::ios::binary);
  if (!file) throw std::runtime_error("no " VOXPLAY_SPEECH);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  std::vector<std::int16_t> recorded;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto byLow = static_cast<std::uint8_t>(bytes[i]);
    const auto byHigh = static_cast<std::uint8_t>(bytes[i + 1]);
    recorded.push_back(static_cast<std::int16_t>(static_cast<std::uint16_t>(byHigh << 8 | byLow)));
  }
  // Copies in one go, so that making the sound hardly counts.
  std::vector<std::int16_t> samples;
  const std::size_t nSamples = nSeconds * kSecond;
  while (samples.size() < nSamples) {
    const std::size_t nMore = std::min(recorded.size(), nSamples - samples.size());
    samples.insert(samples.end(), recorded.begin(),
                   recorded.begin() + static_cast<std::ptrdiff_t>(nMore));
  }
  return samples;
}

std::vector<std::uint8_t> Encoded(std::size_t nSeconds, int nBitDepth) {
  std::vector<std::uint8_t> coded;
  if (!heron::EncodeSamples(Speech(nSeconds), kSampleRate, nBitDepth, &coded, {})) {
    throw std::runtime_error("not encoded");
  }
  return coded;
}

template <int nBitDepth>
void Encode(std::size_t nSeconds) {
  Use(Encoded(nSeconds, nBitDepth).data());
}

// Encodes the sound first, however often it is decoded.
constexpr std::size_t kDecodedSeconds = 8;
template <int nBitDepth>
void Decode(std::size_t nTimes) {
  const auto coded = Encoded(kDecodedSeconds, nBitDepth);
  std::vector<std::int16_t> samples(kDecodedSeconds * kSecond);
  for (std::size_t n = 0; n < nTimes; ++n) {
    heron::C_Decoder::Open(coded, kSampleRate)->DecodeAll(samples);
    Use(samples.data());
  }
}

constexpr std::array kSubjects = {
    S_Subject{"heron-encode-2", "sample", kSecond, 8, 32, &Encode<2>},
    S_Subject{"heron-encode-4", "sample", kSecond, 8, 32, &Encode<4>},
    S_Subject{"heron-encode-6", "sample", kSecond, 8, 32, &Encode<6>},
    S_Subject{"heron-decode-2", "sample", kDecodedSeconds* kSecond, 1, 4, &Decode<2>},
    S_Subject{"heron-decode-4", "sample", kDecodedSeconds* kSecond, 1, 4, &Decode<4>},
    S_Subject{"heron-decode-6", "sample", kDecodedSeconds* kSecond, 1, 4, &Decode<6>},
};

}  // namespace

std::span<const S_Subject> HeronSubjects() { return kSubjects; }

}  // namespace counted
