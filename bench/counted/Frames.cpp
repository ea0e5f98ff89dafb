// SPDX-License-Identifier: Apache-2.0
//
// The Kestrel frame coder on recorded speech, a frame a unit.
#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "Subjects.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace counted {
namespace {

using kestrel::S_Frame;
using S_Words = std::array<std::uint16_t, kestrel::kMaxWordsPerFrame>;

std::vector<S_Frame> Speech() {
  std::ifstream file(VOXPLAY_SPEECH, std::ios::binary);
  if (!file) throw std::runtime_error("no " VOXPLAY_SPEECH);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  std::vector<S_Frame> frames(bytes.size() / sizeof(S_Frame));
  for (std::size_t i = 0; i < frames.size() * kestrel::kSamplesPerFrame; ++i) {
    const auto wLow = static_cast<std::uint8_t>(bytes[2 * i]);
    const auto wHigh = static_cast<std::uint8_t>(bytes[2 * i + 1]);
    frames[i / kestrel::kSamplesPerFrame][i % kestrel::kSamplesPerFrame] =
        static_cast<std::int16_t>(static_cast<std::uint16_t>(wHigh << 8 | wLow));
  }
  return frames;
}

template <std::uint32_t dwRate>
void Encode(std::size_t nFrames) {
  const auto speech = Speech();
  kestrel::C_Encoder encoder;
  encoder.Init(dwRate);
  S_Words words{};
  for (std::size_t n = 0; n < nFrames; ++n) {
    encoder.Encode(speech[n % speech.size()], words);
    Use(words.data());
  }
}

// Encodes all of the speech first, however few frames are decoded.
template <std::uint32_t dwRate>
void Decode(std::size_t nFrames) {
  const auto speech = Speech();
  kestrel::C_Encoder encoder;
  encoder.Init(dwRate);
  std::vector<S_Words> stream(speech.size());
  for (std::size_t n = 0; n < speech.size(); ++n) encoder.Encode(speech[n], stream[n]);
  kestrel::C_Decoder decoder;
  decoder.Init(dwRate);
  S_Frame samples{};
  for (std::size_t n = 0; n < nFrames; ++n) {
    decoder.Decode(stream[n % stream.size()], samples);
    Use(samples.data());
  }
}

constexpr std::array kSubjects = {
    S_Subject{"kestrel-encode-16000", "frame", 1, 200, 1000, &Encode<16000>},
    S_Subject{"kestrel-encode-32000", "frame", 1, 200, 1000, &Encode<32000>},
    S_Subject{"kestrel-decode-16000", "frame", 1, 200, 1000, &Decode<16000>},
    S_Subject{"kestrel-decode-32000", "frame", 1, 200, 1000, &Decode<32000>},
};

}  // namespace

std::span<const S_Subject> FrameSubjects() { return kSubjects; }

}  // namespace counted
