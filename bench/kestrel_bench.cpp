// SPDX-License-Identifier: Apache-2.0
//
// Frames per second of the Kestrel frame coder on a speech-like sound, in each direction at three
// rates.
//
//   cmake --preset bench && cmake --build --preset bench --target kestrel_bench
//   build/bench/bin/kestrel_bench
//
// 50 frames per second are real time.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>
#include <vector>

#include "Speech.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace {

constexpr std::size_t kFrames = 200;

std::vector<std::int16_t> Speech() { return speech::Samples(kFrames * 320); }

// Hands out the frames of a sound one after the other, and starts again after the last.
template <typename Value>
class C_Frames {
 public:
  C_Frames(const std::vector<Value>& values, std::size_t nPerFrame)
      : m_values(values), m_nPerFrame(nPerFrame) {}
  std::span<const Value> Next() {
    if (m_values.size() - m_nAt < m_nPerFrame) m_nAt = 0;
    m_nAt += m_nPerFrame;
    return m_values.subspan(m_nAt - m_nPerFrame, m_nPerFrame);
  }

 private:
  std::span<const Value> m_values;
  std::size_t m_nPerFrame;
  std::size_t m_nAt = 0;
};

std::span<const std::int16_t, 320> FrameOf(std::span<const std::int16_t> samples) {
  return samples.first<320>();
}

void EncodeFrame(benchmark::State& state) {
  const auto speech = Speech();
  C_Frames frames(speech, 320);
  kestrel::C_Encoder encoder;
  encoder.Init(static_cast<std::uint32_t>(state.range(0)));
  std::vector<std::uint16_t> words(kestrel::kMaxWordsPerFrame);
  for ([[maybe_unused]] auto iteration : state) {
    encoder.Encode(FrameOf(frames.Next()), words);
    benchmark::DoNotOptimize(words.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
}

std::vector<std::uint16_t> EncodedSpeech(std::uint32_t dwRate) {
  const auto speech = Speech();
  kestrel::C_Encoder encoder;
  const auto nWords = static_cast<std::size_t>(encoder.Init(dwRate).nWordsPerFrame);
  std::vector<std::uint16_t> words(speech.size() / 320 * nWords);
  for (std::size_t n = 0; n < words.size() / nWords; ++n) {
    encoder.Encode(FrameOf(std::span(speech).subspan(320 * n)),
                   std::span(words).subspan(n * nWords));
  }
  return words;
}

void DecodeFrame(benchmark::State& state) {
  const auto dwRate = static_cast<std::uint32_t>(state.range(0));
  const auto words = EncodedSpeech(dwRate);
  kestrel::C_Decoder decoder;
  C_Frames frames(words, static_cast<std::size_t>(decoder.Init(dwRate).nWordsPerFrame));
  kestrel::S_Frame samples;
  for ([[maybe_unused]] auto iteration : state) {
    decoder.Decode(frames.Next(), samples);
    benchmark::DoNotOptimize(samples.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(EncodeFrame)->Arg(7200)->Arg(16000)->Arg(32000);
BENCHMARK(DecodeFrame)->Arg(7200)->Arg(16000)->Arg(32000);

}  // namespace
