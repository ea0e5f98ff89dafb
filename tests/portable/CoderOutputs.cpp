// SPDX-License-Identifier: Apache-2.0
//
// The frame coders: Kestrel at all its rates, Heron at each depth.
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "Outputs.h"
#include "Voice.h"
#include "heron/Configuration.h"
#include "heron/SoundCoder.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace {

constexpr std::size_t kFrames = 12;

std::vector<std::uint16_t> EncodeKestrel(std::uint32_t dwBitRate) {
  kestrel::C_Encoder encoder;
  const auto nWords = static_cast<std::size_t>(encoder.Init(dwBitRate).nWordsPerFrame);
  const auto voice = Voice(kFrames * kestrel::kSamplesPerFrame);
  std::vector<std::uint16_t> words(kFrames * nWords);
  for (std::size_t n = 0; n < kFrames; ++n) {
    const std::span<const std::int16_t, kestrel::kSamplesPerFrame> frame(
        voice.data() + n * kestrel::kSamplesPerFrame, kestrel::kSamplesPerFrame);
    encoder.Encode(frame, std::span(words).subspan(n * nWords, nWords));
  }
  return words;
}

std::vector<std::int16_t> DecodeKestrel(std::uint32_t dwBitRate,
                                        std::span<const std::uint16_t> words) {
  kestrel::C_Decoder decoder;
  const auto nWords = static_cast<std::size_t>(decoder.Init(dwBitRate).nWordsPerFrame);
  std::vector<std::int16_t> samples;
  std::array<std::int16_t, kestrel::kSamplesPerFrame> frame{};
  for (; words.size() >= nWords; words = words.subspan(nWords)) {
    decoder.Decode(words.first(nWords), frame);
    samples.insert(samples.end(), frame.begin(), frame.end());
  }
  return samples;
}

void AddKestrel(C_Outputs& outputs, std::uint32_t dwBitRate) {
  const std::string strName = "kestrel " + std::to_string(dwBitRate);
  auto words = EncodeKestrel(dwBitRate);
  outputs.AddWords(strName + " encoded", words);
  outputs.AddWords(strName + " decoded", DecodeKestrel(dwBitRate, words));
  for (std::size_t n = 0; n < words.size(); n += 17) words[n] ^= 0x0410U;
  outputs.AddWords(strName + " damaged", DecodeKestrel(dwBitRate, words));
}

void AddHeron(C_Outputs& outputs, int nBitDepth, int nSampleRate, std::size_t nSamples) {
  const std::string strName = "heron " + std::to_string(nBitDepth) + " bits " +
                              std::to_string(nSampleRate) + " Hz " + std::to_string(nSamples);
  std::vector<std::uint8_t> coded;
  std::vector<std::int16_t> samples;
  if (!heron::EncodeSamples(Voice(nSamples), nSampleRate, nBitDepth, &coded, {}) ||
      !heron::DecodeSamples(coded, nSampleRate, &samples)) {
    throw std::runtime_error(strName);
  }
  outputs.Add(strName + " encoded", coded);
  outputs.AddWords(strName + " decoded", samples);
  // A sound of several blocks loses one of them.
  if (nSamples <= heron::BlockLength(nSampleRate)) return;
  coded[coded.size() / 2] ^= 0x10U;
  if (!heron::DecodeSamples(coded, nSampleRate, &samples)) throw std::runtime_error(strName);
  outputs.AddWords(strName + " damaged", samples);
}

}  // namespace

void AddCoderOutputs(C_Outputs& outputs) {
  for (std::uint32_t dwBitRate = 4800; dwBitRate <= 32000; dwBitRate += 800) {
    AddKestrel(outputs, dwBitRate);
  }
  for (int nBitDepth = 2; nBitDepth <= 6; ++nBitDepth) {
    AddHeron(outputs, nBitDepth, 8000, 4000);
    AddHeron(outputs, nBitDepth, 16000, 300);
    AddHeron(outputs, nBitDepth, 44100, 3000);
    AddHeron(outputs, nBitDepth, 4000, 40000);
  }
}
